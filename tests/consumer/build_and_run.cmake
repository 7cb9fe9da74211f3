# Installs the build into a folder of its own, builds the consumer project against it with nothing
# but the package, and runs both programs beside the installed libraries.
#
# Arguments: BUILD_DIR, SOURCE_DIR, WORK_DIR, TOOLCHAIN, RUNNER
function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "failed (${result}): ${ARGN}")
  endif()
endfunction()

file(REMOVE_RECURSE ${WORK_DIR})
run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${WORK_DIR}/installed)

# The guide's host, as it stands there: it is built, not run, for it waits for its user.
file(READ ${SOURCE_DIR}/../../docs/integration.md guide)
foreach(file host.rc host.cpp)
  if(NOT guide MATCHES "`${file}`:\n\n```[a-z]+\n(([^`]|`[^`])*)```")
    message(FATAL_ERROR "the guide has no ${file}")
  endif()
  file(WRITE ${WORK_DIR}/guide/${file} "${CMAKE_MATCH_1}")
endforeach()

run(${CMAKE_COMMAND} -S ${SOURCE_DIR}/project -B ${WORK_DIR}/build -G Ninja
    -DGUIDE_DIR=${WORK_DIR}/guide
    -DCMAKE_BUILD_TYPE=Release -DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN}
    -DCMAKE_PREFIX_PATH=${WORK_DIR}/installed
    -DCMAKE_RUNTIME_OUTPUT_DIRECTORY=${WORK_DIR}/installed/bin)
run(${CMAKE_COMMAND} --build ${WORK_DIR}/build)
foreach(program consumer_c consumer_cpp)
  execute_process(COMMAND ${RUNNER} ./${program}.exe WORKING_DIRECTORY ${WORK_DIR}/installed/bin
                  RESULT_VARIABLE result)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${program} answered ${result}")
  endif()
endforeach()
