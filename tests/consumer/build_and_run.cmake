# Installs the build into a folder of its own, builds the consumer project against it with nothing
# but the package, and its programs with nothing but the compiler, and runs them all beside the
# installed libraries.
#
# Arguments: BUILD_DIR, SOURCE_DIR, WORK_DIR, TOOLCHAIN, C_COMPILER, CXX_COMPILER, RUNNER
set(installed ${WORK_DIR}/installed)

# Runs a command, below bin/ if FOLDER says where; its output is in `output` afterwards.
function(run)
  cmake_parse_arguments(arg "" "FOLDER" "" ${ARGN})
  execute_process(COMMAND ${arg_UNPARSED_ARGUMENTS} RESULT_VARIABLE result OUTPUT_VARIABLE output
                  WORKING_DIRECTORY ${WORK_DIR}/installed/bin/${arg_FOLDER})
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "failed (${result}): ${arg_UNPARSED_ARGUMENTS}\n${output}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE ${WORK_DIR})
file(MAKE_DIRECTORY ${installed}/bin)
run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${installed})
file(GLOB made_for_tests ${installed}/bin/qps-*)
if(made_for_tests OR NOT EXISTS ${installed}/bin/de/Resources/Localized/mvpinguirc.dll)
  message(FATAL_ERROR "wrong languages are installed: ${made_for_tests}")
endif()

# The guide's host, as it stands there: it is built, not run, for it waits for its user.
file(READ ${SOURCE_DIR}/../../docs/integration.md guide)
foreach(file host.rc host.cpp popup.cpp)
  if(NOT guide MATCHES "`${file}`:\n\n```[a-z]+\n(([^`]|`[^`])*)```")
    message(FATAL_ERROR "the guide has no ${file}")
  endif()
  file(WRITE ${WORK_DIR}/guide/${file} "${CMAKE_MATCH_1}")
endforeach()

run(${CMAKE_COMMAND} -S ${SOURCE_DIR}/project -B ${WORK_DIR}/build -G Ninja
    -DGUIDE_DIR=${WORK_DIR}/guide
    -DCMAKE_BUILD_TYPE=Release -DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN}
    -DCMAKE_PREFIX_PATH=${installed} -DCMAKE_RUNTIME_OUTPUT_DIRECTORY=${installed}/bin)
run(${CMAKE_COMMAND} --build ${WORK_DIR}/build)

# What pkg-config says, as arguments, in `flags`.
set(ENV{PKG_CONFIG_LIBDIR} ${installed}/lib/pkgconfig)
function(ask_pkg_config)
  run(pkg-config --cflags --libs ${ARGN})
  separate_arguments(flags UNIX_COMMAND "${output}")
  set(flags ${flags} PARENT_SCOPE)
endfunction()
set(strict -Wall -Wextra -Wpedantic -Werror)
ask_pkg_config(mvpingui)
run(${C_COMPILER} -std=c99 ${strict} ${SOURCE_DIR}/project/consumer.c -o plain_c.exe ${flags})

# The oldest standard that the headers promise to do with; all of them, each first of its own.
file(GLOB_RECURSE headers RELATIVE ${installed}/include ${installed}/include/*.h)
list(TRANSFORM headers REPLACE "(.+)" "#include <\\1>\n" OUTPUT_VARIABLE includes)
file(WRITE ${WORK_DIR}/all_headers.h ${includes})
ask_pkg_config(mvpingui dlgfw vkevtsub)
run(${CXX_COMPILER} -std=c++17 ${strict} -include ${WORK_DIR}/all_headers.h
    ${SOURCE_DIR}/project/consumer.cpp -o plain_cpp.exe ${flags} -static)
run(${CXX_COMPILER} -std=c++17 ${strict} -c ${WORK_DIR}/guide/popup.cpp -o popup.o ${flags})

foreach(program consumer_c consumer_cpp plain_c plain_cpp)
  run(${RUNNER} ./${program}.exe)
endforeach()

# A language is the folder that a linked host starts in, and the one that pinhost goes to.
function(expect_french)
  if(NOT output MATCHES "annul")
    message(FATAL_ERROR "not French: ${output}")
  endif()
endfunction()
run(FOLDER fr ${RUNNER} ../plain_c.exe)
expect_french()
run(${RUNNER} ./pinhost.exe error-text 11 --language fr)
expect_french()
