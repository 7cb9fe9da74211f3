# A bounded, repeatable run of one fuzz target: same seeds, same random numbers, same number of
# executions. What it finds is left in WORK.
file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})
execute_process(
  COMMAND ${PROGRAM} ${WORK} ${SEEDS} -runs=${RUNS} -seed=1 -max_len=2048 -timeout=20
          -rss_limit_mb=2048 -dict=${DICTIONARY} -artifact_prefix=${WORK}/ -print_final_stats=1
  RESULT_VARIABLE result ERROR_VARIABLE output)
string(REGEX MATCH "stat::number_of_executed_units: *([0-9]+)" executed "${output}")
if(NOT result EQUAL 0 OR NOT executed OR CMAKE_MATCH_1 LESS RUNS)
  message(FATAL_ERROR "${output}")
endif()
message(STATUS "${executed}")
