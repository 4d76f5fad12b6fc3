# The virtual module of the screen tests, serving the test catalog.
GETSN = SN0042
GETVER = 1.2.3
GETNAME = Test module
GETPDATE = 01.02.2024
GETVIN = VIN0000000000042
GETAPPNAME = TESTAPP
GETAPPVER = 4.5.6
GETHWVER = HW 7
GETAPPINFO = "  first line\r\nsecond line"
GETUID = 0123456789ABCDEF
# The image of "Module"
GETAPPCFG = 000000000F21415A
CatalogFile = ../editing/test-catalog.xml
