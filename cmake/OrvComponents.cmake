# Each folder of the library is an object library plus a static archive of the
# same objects, so tests can link just the part they exercise. The public
# shared and static libraries are made of all the objects.
#
# A component sees the headers of its own folder and of the components it
# depends on, nothing else: its include path is a folder of the build tree
# holding a link to its own source folder only, and the links of its
# dependencies come along through target_link_libraries. Including a folder
# it does not depend on is a compile error.
set(ORV_COMPONENT_OBJECTS "" CACHE INTERNAL "")
set(ORV_COMPONENT_LINKS "" CACHE INTERNAL "")

function(orv_component name)
  cmake_parse_arguments(C "" "DIR" "DEPS" ${ARGN})
  if(C_UNPARSED_ARGUMENTS OR NOT C_DIR)
    message(FATAL_ERROR "orv_component(${name}): takes DIR and DEPS only, got '${ARGN}'")
  endif()
  file(GLOB sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/${C_DIR}/*.cpp")
  if(NOT sources)
    message(FATAL_ERROR "orv_component(${name}): no .cpp file in ${C_DIR}")
  endif()
  set(deps "")
  foreach(dep IN LISTS C_DEPS)
    if(dep MATCHES "::")
      if(NOT TARGET ${dep})
        message(FATAL_ERROR "orv_component(${name}): unknown dependency ${dep}")
      endif()
      list(APPEND deps ${dep})
      set(ORV_COMPONENT_LINKS ${ORV_COMPONENT_LINKS} ${dep} CACHE INTERNAL "")
    elseif(TARGET orv_${dep})
      list(APPEND deps orv_${dep})
    else()
      message(FATAL_ERROR
        "orv_component(${name}): unknown dependency '${dep}' (components are declared before "
        "the components that use them)")
    endif()
  endforeach()

  string(REGEX REPLACE "^src/" "" header_path "${C_DIR}")
  set(layer ${PROJECT_BINARY_DIR}/orv-layers/${name})
  get_filename_component(link_parent ${layer}/${header_path} DIRECTORY)
  file(MAKE_DIRECTORY ${link_parent})
  file(CREATE_LINK ${PROJECT_SOURCE_DIR}/${C_DIR} ${layer}/${header_path} SYMBOLIC)

  add_library(orv_${name}_objects OBJECT ${sources})
  target_include_directories(orv_${name}_objects PUBLIC
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
    $<BUILD_INTERFACE:${layer}>)
  target_compile_definitions(orv_${name}_objects PRIVATE ORV_BUILDING_LIBRARY)
  foreach(dep IN LISTS deps)
    if(dep MATCHES "::")
      target_link_libraries(orv_${name}_objects PUBLIC ${dep})
    else()
      target_link_libraries(orv_${name}_objects PUBLIC ${dep}_objects)
    endif()
  endforeach()
  add_library(orv_${name} STATIC $<TARGET_OBJECTS:orv_${name}_objects>)
  target_include_directories(orv_${name} PUBLIC ${PROJECT_SOURCE_DIR}/include ${layer})
  target_link_libraries(orv_${name} PUBLIC ${deps})
  set(ORV_COMPONENT_OBJECTS ${ORV_COMPONENT_OBJECTS} $<TARGET_OBJECTS:orv_${name}_objects>
      CACHE INTERNAL "")
endfunction()
function(orv_public_libraries)
  list(REMOVE_DUPLICATES ORV_COMPONENT_LINKS)
  foreach(kind SHARED STATIC)
    if(kind STREQUAL SHARED)
      set(target orvwebpage)
    else()
      set(target orvwebpage_static)
    endif()
    add_library(${target} ${kind} ${ORV_COMPONENT_OBJECTS})
    target_include_directories(${target} PUBLIC
      $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
      $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
    target_link_libraries(${target} PRIVATE ${ORV_COMPONENT_LINKS})
    set_target_properties(${target} PROPERTIES OUTPUT_NAME orvwebpage
      VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
  endforeach()
  # Tools and benchmarks link the static library with its private dependencies.
  target_link_libraries(orvwebpage_static PUBLIC ${ORV_COMPONENT_LINKS})
  add_library(OrvWebPage::orvwebpage ALIAS orvwebpage)
endfunction()
