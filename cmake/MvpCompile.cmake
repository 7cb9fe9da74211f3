# How every target of the project is compiled. What is particular to a compiler or a build kind
# stands here and nowhere else. The options name their languages: the resource compiler takes none.

add_library(mvp_options INTERFACE)

function(mvp_compile languages)
  target_compile_options(mvp_options INTERFACE "$<$<COMPILE_LANGUAGE:${languages}>:${ARGN}>")
endfunction()

mvp_compile(C,CXX -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wcast-qual
            -Wduplicated-cond -Wlogical-op -Werror)
mvp_compile(CXX -Wold-style-cast -Wnon-virtual-dtor -Woverloaded-virtual
            -Wzero-as-null-pointer-constant)

if(WIN32)
  # Windows 7 is the oldest system served; the ANSI functions are the interface of the suite.
  target_compile_definitions(mvp_options INTERFACE
    _WIN32_WINNT=0x0601 WINVER=0x0601 WIN32_LEAN_AND_MEAN NOMINMAX STRICT)
  # A library that is loaded into foreign processes must not meet another build of the language's
  # runtime there, so every binary carries its own.
  target_link_options(mvp_options INTERFACE
    -static -Wl,--dynamicbase -Wl,--nxcompat)
  if(CMAKE_SIZEOF_VOID_P EQUAL 8)
    target_link_options(mvp_options INTERFACE -Wl,--high-entropy-va)
  else()
    # The stack that a 32-bit system or host calls with stands at multiples of four bytes. Without SSE,
    # which this target has not by default, nothing needs more; with it this compiler sees to it.
    target_link_options(mvp_options INTERFACE -Wl,--large-address-aware)
  endif()
  # Sections that lie in the file as they do in memory are mapped by the loader, others it may copy.
  target_link_options(mvp_options INTERFACE -Wl,--file-alignment=4096)
  # What is built is the same bytes wherever and whenever: no folder of the machine in it, no time.
  mvp_compile(C,CXX -ffile-prefix-map=${PROJECT_SOURCE_DIR}/=)
  target_link_options(mvp_options INTERFACE -Wl,--no-insert-timestamp)
  mvp_compile(C,CXX -fstack-protector-strong)
  # The compiler's support library is linked only when the linker is told as well. The checked string
  # functions come from it; the guard's value and what ends the process are ours.
  target_link_options(mvp_options INTERFACE -fstack-protector-strong)
  add_library(mvp_in_every_binary OBJECT ${PROJECT_SOURCE_DIR}/src/platform/stack_guard.cpp)
  target_compile_definitions(mvp_in_every_binary PRIVATE
    $<TARGET_PROPERTY:mvp_options,INTERFACE_COMPILE_DEFINITIONS>)
  target_compile_options(mvp_in_every_binary PRIVATE
    $<TARGET_PROPERTY:mvp_options,INTERFACE_COMPILE_OPTIONS>
    -fno-stack-protector -fno-exceptions)
  target_link_libraries(mvp_options INTERFACE $<TARGET_OBJECTS:mvp_in_every_binary>)
  if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    # It finds the section of the records by its short name.
    target_sources(mvp_in_every_binary PRIVATE ${PROJECT_SOURCE_DIR}/src/platform/frame_records.cpp)
    target_link_options(mvp_options INTERFACE -Wl,--disable-long-section-names)
  endif()
  if(NOT CMAKE_BUILD_TYPE STREQUAL "Debug")
    target_compile_definitions(mvp_options INTERFACE _FORTIFY_SOURCE=2)
    target_link_options(mvp_options INTERFACE -s)
  endif()
  if(MVP_TRAP_UNDEFINED)
    mvp_compile(C,CXX -fsanitize=undefined -fsanitize-undefined-trap-on-error)
  endif()
endif()

# For hosts and tests, whose time goes into waiting: they build in half the time.
set(mvp_quick_build "$<$<AND:$<COMPILE_LANGUAGE:C,CXX>,$<NOT:$<CONFIG:Debug>>>:-O1>")

if(MVP_SANITIZE)
  # Lines of the source are all that a report needs to tell.
  mvp_compile(C,CXX -O1 -g1)
  mvp_compile(C,CXX -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(mvp_options INTERFACE -fsanitize=address,undefined)
endif()
if(MVP_COVERAGE)
  mvp_compile(C,CXX --coverage)
  target_link_options(mvp_options INTERFACE --coverage)
endif()
