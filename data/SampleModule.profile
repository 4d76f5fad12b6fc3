# Profile of servicebay-module: what the virtual module says about itself.
#
# One setting a line, KEY = VALUE; blank lines and lines that begin with # are
# skipped. Blanks around the value are dropped; put the value in double quotes
# to keep them. In a value \r, \n, \t, \\, \" and \xHH (two hex digits) stand
# for that byte. Paths are taken relative to the folder of this file.
#
# A key in capitals is a command of the boot loader and its answer, given as
# it stands (the module adds echo, LF and prompt). Any such word may be added.
# Four of them are special: GETAPPCFG is the configuration image (hex) the
# module starts with, which SETAPPCFG replaces while it runs (SETAPPCFG takes
# only an image of the same length); GETUID is the UID that CLROTP must be
# given; CLROTP is the answer to the right UID ("Error!" to any other);
# GETINFOFILE serves the file named by CatalogFile. Commands it does not know
# are answered "Error!".
#
# Other keys:
#   CatalogFile   the catalog document served by GETINFOFILE ("Error!" without)
#   Xmodem        CRC or Checksum: what the boot loader asks for at the handshake
#   ReportOk      sent behind a transfer that ended well
#   ReportFailed  sent behind one that did not
#   RunAnswer     sent in answer to RUN, before the firmware starts
#   FirmwareOut   where a received image is written (default: nowhere)
#   UsbSerial     serial number of the USB identities (default: from GETSN)
#   ProductId     USB product id of the running firmware, 17xx (default 1742)
#   Description   the device's description in the port lists

GETSN = 20240117
GETVER = 1.04.02
GETNAME = Sniffer
GETPDATE = 17.01.2024
GETVIN = WDB9634031L123456
GETAPPNAME = SNIFFER_APP
GETAPPVER = 2.11.07
GETHWVER = HW 3.1
GETAPPINFO = "Sniffer application 2.11.07\r\nBuilt 05.03.2024 14:22\r\nBoot loader 1.04.02\r\n  CAN: 2 channels, LIN: 1 channel"
GETUID = 3A0F5C21D4E8B907
CLROTP = OTP cleared: OK

# The catalog's configuration "Truck", edited a little: Mode On, Wake delay 20 ms.
GETAPPCFG = 03000000550505051234545255434B312800
CatalogFile = SampleCatalog.xml

Xmodem = CRC
ReportOk = Flash OK\r\n
ReportFailed = Flash ERROR\r\n
RunAnswer = RUN\r\nStarting application\r\n
ProductId = 1742
Description = ServiceBay virtual module
