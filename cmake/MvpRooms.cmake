# The rooms of the code: folders of src/ whose sources belong together, each a target of its own.
#
# A room names the rooms that it stands on, and includes nothing of any other: the targets link
# accordingly, and the structure test reads the #include lines. A room can only name one that was
# declared before it, so no circle comes about.

# mvp_room_record(PATH [TARGET target] [USES rooms] [HEADERS public headers]): what the build and the
# structure test know of a room. HEADERS are the room's files below include/.
function(mvp_room_record path)
  cmake_parse_arguments(arg "" "TARGET" "USES;HEADERS" ${ARGN})
  get_property(known GLOBAL PROPERTY MVP_ROOMS)
  foreach(used IN LISTS arg_USES)
    if(NOT used IN_LIST known)
      message(FATAL_ERROR "Room ${path} stands on ${used}, which was not declared before it.")
    endif()
  endforeach()
  set_property(GLOBAL APPEND PROPERTY MVP_ROOMS ${path})
  set_property(GLOBAL PROPERTY MVP_ROOM_TARGET_${path} ${arg_TARGET})
  set_property(GLOBAL PROPERTY MVP_ROOM_USES_${path} ${arg_USES})
  list(JOIN arg_USES " " uses)
  list(JOIN arg_HEADERS " " headers)
  if(arg_HEADERS)
    set_property(GLOBAL APPEND PROPERTY MVP_ROOMS_WITH_HEADERS ${path})
  endif()
  set_property(GLOBAL APPEND_STRING PROPERTY MVP_ROOM_LINES "${path}|${uses}|${headers}\n")
endfunction()

# mvp_room_targets(out ROOMS...): the targets of rooms, as far as this build has them.
function(mvp_room_targets out)
  set(targets)
  foreach(room IN LISTS ARGN)
    get_property(target GLOBAL PROPERTY MVP_ROOM_TARGET_${room})
    if(TARGET "${target}")
      list(APPEND targets ${target})
    endif()
  endforeach()
  set(${out} ${targets} PARENT_SCOPE)
endfunction()

# mvp_rooms_down_from(out ROOM): the room and all that it stands on.
function(mvp_rooms_down_from out room)
  set(all ${room})
  get_property(uses GLOBAL PROPERTY MVP_ROOM_USES_${room})
  foreach(used IN LISTS uses)
    mvp_rooms_down_from(below ${used})
    list(APPEND all ${below})
  endforeach()
  list(REMOVE_DUPLICATES all)
  set(${out} ${all} PARENT_SCOPE)
endfunction()

# mvp_room(PATH [PURE sources] [WINDOWS sources] [USES rooms] [HEADERS public headers]
#          [LIBS libraries])
#
# The room src/PATH as target mvp_<PATH>, a "/" of the path written as "_". PURE sources are built
# for every system, WINDOWS ones and LIBS for Windows alone.
function(mvp_room path)
  cmake_parse_arguments(arg "" "" "PURE;WINDOWS;USES;HEADERS;LIBS" ${ARGN})
  string(REPLACE "/" "_" name mvp_${path})
  mvp_room_record(${path} TARGET ${name} USES ${arg_USES} HEADERS ${arg_HEADERS})
  set(sources ${arg_PURE})
  mvp_room_targets(libraries ${arg_USES})
  if(WIN32)
    list(APPEND sources ${arg_WINDOWS})
    list(APPEND libraries ${arg_LIBS})
  endif()
  set(scope INTERFACE)
  if(sources)
    set(scope PUBLIC)
    add_library(${name} STATIC ${sources})
    target_link_libraries(${name} PRIVATE mvp_options)
    set_target_properties(${name} PROPERTIES POSITION_INDEPENDENT_CODE ON)
  else()
    add_library(${name} INTERFACE)
  endif()
  target_include_directories(${name} ${scope}
    ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/include)
  target_link_libraries(${name} ${scope} ${libraries})
  if(arg_HEADERS)
    target_compile_definitions(${name} ${scope} MVPINGUI_EXPORTS)
  endif()
endfunction()
