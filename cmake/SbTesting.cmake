# sb_add_test(<name> LABEL <unit|integration|gui|interop> SOURCES ... [LIBS ...] [WRAPPER program...])
# One GoogleTest executable, its cases discovered at test time and labelled.
# Every test runs with Qt's offscreen platform and its own registry folder for
# virtual modules, so that tests never see a module started by a person, and
# data and settings folders of its own, so that they never touch the user's.
function(sb_add_test name)
  cmake_parse_arguments(T "" "LABEL;TIMEOUT" "SOURCES;LIBS;WRAPPER" ${ARGN})
  if(NOT T_TIMEOUT)
    set(T_TIMEOUT 300)
  endif()
  add_executable(${name} ${T_SOURCES})
  target_link_libraries(${name} PRIVATE ${T_LIBS} sb_test_support GTest::gtest GTest::gmock GTest::gtest_main)
  # gtest_discover_tests hands PROPERTIES on as one flat list, so an
  # ENVIRONMENT of several variables would keep only the first. The tests
  # run under env(1) instead, which sets them all and then becomes the test.
  set_property(TARGET ${name} PROPERTY CROSSCOMPILING_EMULATOR env
    "QT_QPA_PLATFORM=offscreen"
    "SERVICEBAY_REGISTRY=${CMAKE_BINARY_DIR}/test-registry/${name}"
    "SB_BIN_DIR=${CMAKE_BINARY_DIR}/bin"
    "SB_SOURCE_DIR=${CMAKE_SOURCE_DIR}"
    "XDG_DATA_HOME=${CMAKE_BINARY_DIR}/test-home/${name}/data"
    "XDG_CONFIG_HOME=${CMAKE_BINARY_DIR}/test-home/${name}/config"
    ${T_WRAPPER})
  gtest_discover_tests(${name}
    DISCOVERY_MODE PRE_TEST
    DISCOVERY_TIMEOUT 60
    PROPERTIES
      LABELS ${T_LABEL}
      TIMEOUT ${T_TIMEOUT})
endfunction()
