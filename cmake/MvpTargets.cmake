# The kinds of target the project is made of.

# mvp_core(name SOURCES...): pure code, without windows.h; built for Windows and natively.
function(mvp_core name)
  add_library(${name} STATIC ${ARGN})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(${name} PRIVATE mvp_options)
  set_target_properties(${name} PROPERTIES POSITION_INDEPENDENT_CODE ON)
endfunction()

# mvp_version(target FILE TYPE DESCRIPTION): VERSIONINFO for a Windows binary. TYPE is VFT_DLL or
# VFT_APP.
function(mvp_version target MVP_FILE_NAME MVP_FILE_TYPE MVP_DESCRIPTION)
  set(rc ${CMAKE_CURRENT_BINARY_DIR}/${target}_version.rc)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/version.rc.in ${rc} @ONLY)
  target_sources(${target} PRIVATE ${rc})
endfunction()

# mvp_pkg_config(name DESCRIPTION): what a host needs that is built without CMake. The paths follow
# the file.
function(mvp_pkg_config name description)
  set(libraries $<TARGET_PROPERTY:${name},INTERFACE_LINK_LIBRARIES>)
  string(JOIN "\n" content
    "prefix=\${pcfiledir}/../.."
    "Name: ${name}"
    "Description: ${description}"
    "Version: ${PROJECT_VERSION}"
    "Cflags: -I\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}"
    "Libs: -L\${prefix}/${CMAKE_INSTALL_LIBDIR} -l${name}$<$<BOOL:${libraries}>: -l>$<JOIN:${libraries}, -l>"
    "")
  file(GENERATE OUTPUT ${PROJECT_BINARY_DIR}/pkgconfig/${name}.pc CONTENT "${content}")
  install(FILES ${PROJECT_BINARY_DIR}/pkgconfig/${name}.pc
          DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endfunction()

# mvp_dll(name DESCRIPTION SOURCES...): a shipped library; its sources see <NAME>_EXPORTS.
function(mvp_dll name description)
  add_library(${name} SHARED ${ARGN})
  string(TOUPPER ${name} upper)
  # A plain .a is found by -l in a host that links its language's runtime with -static, too.
  set_target_properties(${name} PROPERTIES DEFINE_SYMBOL ${upper}_EXPORTS IMPORT_SUFFIX .a)
  target_link_libraries(${name} PRIVATE mvp_options)
  mvp_version(${name} ${name}.dll VFT_DLL "${description}")
  install(TARGETS ${name} EXPORT mvpingui RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
          ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
  mvp_pkg_config(${name} "${description}")
endfunction()

# mvp_unit_test(name SOURCES... [LIBS libraries...]): a native GoogleTest program for pure code.
function(mvp_unit_test name)
  cmake_parse_arguments(arg "" "" "LIBS" ${ARGN})
  add_executable(${name} ${arg_UNPARSED_ARGUMENTS})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE mvp_options ${arg_LIBS} gtest_main)
  add_test(NAME unit.${name} COMMAND ${mvp_on_all_processors} $<TARGET_FILE:${name}>)
  set_tests_properties(unit.${name} PROPERTIES TIMEOUT 300 LABELS unit)
endfunction()

# mvp_ui_test(name SOURCES... [LIBS libraries...] [SCANS]): a Windows GoogleTest program, run under
# Wine. It lies in testbin/, beside copies of the product's libraries and the recording module that
# stands in for the suite's log. SCANS: it looks for secrets in the memory. The test is ui.NAME, in
# the 32-bit build ui.NAME.32.
function(mvp_ui_test name)
  cmake_parse_arguments(arg "SCANS" "" "LIBS" ${ARGN})
  # Padded heap blocks, so that the check after each test sees an overrun. They are filled when they
  # are freed, which hides what was left in them: a program that scans does without.
  set(debug -all,warn+heap)
  if(arg_SCANS)
    set(debug -all)
    list(APPEND arg_UNPARSED_ARGUMENTS ${PROJECT_SOURCE_DIR}/tests/support/scan_control_test.cpp)
  endif()
  add_executable(${name} ${arg_UNPARSED_ARGUMENTS})
  target_link_libraries(${name} PRIVATE mvp_options ${arg_LIBS} mvp_test_support)
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/testbin)
  add_dependencies(${name} test_modules)
  set(test ui.${name})
  if(MVP_SHIPPED_ALONE)
    string(APPEND test .32)
  endif()
  add_test(NAME ${test} COMMAND ${name} WORKING_DIRECTORY ${PROJECT_BINARY_DIR}/testbin)
  set_tests_properties(${test} PROPERTIES TIMEOUT 240 LABELS ui RUN_SERIAL ON
                       ENVIRONMENT WINEDEBUG=${debug})
endfunction()
