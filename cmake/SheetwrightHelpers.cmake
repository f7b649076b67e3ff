# sw_add_gtest(NAME name SOURCES ... LIBS ... [LABELS ...] [WIDGETS])
# One GoogleTest executable per call. Discovery happens after the build, so the test
# binaries must be runnable headless: widget tests set QT_QPA_PLATFORM themselves.
function(sw_add_gtest)
  cmake_parse_arguments(T "WIDGETS" "NAME" "SOURCES;LIBS;LABELS" ${ARGN})
  add_executable(${T_NAME} ${T_SOURCES})
  target_link_libraries(${T_NAME} PRIVATE ${T_LIBS} GTest::gtest GTest::gmock)
  if(NOT T_WIDGETS)
    target_link_libraries(${T_NAME} PRIVATE GTest::gtest_main)
  endif()
  target_compile_definitions(${T_NAME} PRIVATE
    SHEETWRIGHT_MDB_FIXTURES="${SHEETWRIGHT_MDB_FIXTURES}"
    SHEETWRIGHT_SOURCE_DIR="${CMAKE_SOURCE_DIR}"
    SHEETWRIGHT_BINARY_DIR="${CMAKE_BINARY_DIR}")
  set(props "")
  if(T_LABELS)
    list(APPEND props LABELS "${T_LABELS}")
  endif()
  gtest_discover_tests(${T_NAME} DISCOVERY_TIMEOUT 60 PROPERTIES ${props})
endfunction()

# sw_add_fuzzer(NAME name SOURCES ... LIBS ...): only with -DSHEETWRIGHT_FUZZ=ON.
function(sw_add_fuzzer)
  cmake_parse_arguments(F "" "NAME" "SOURCES;LIBS" ${ARGN})
  if(SHEETWRIGHT_FUZZ)
    add_executable(${F_NAME} ${F_SOURCES})
    target_link_libraries(${F_NAME} PRIVATE ${F_LIBS})
    target_link_options(${F_NAME} PRIVATE -fsanitize=fuzzer)
  endif()
endfunction()
