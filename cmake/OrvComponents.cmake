# Each folder of the library is an object library plus a static archive of the
# same objects, so tests can link just the part they exercise. The public
# shared and static libraries are made of all the objects.
set(ORV_COMPONENT_OBJECTS "" CACHE INTERNAL "")
set(ORV_COMPONENT_LINKS "" CACHE INTERNAL "")

function(orv_component name)
  cmake_parse_arguments(C "" "DIR" "DEPS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/${C_DIR}/*.cpp")
  if(NOT sources)
    return()
  endif()
  set(deps "")
  foreach(dep IN LISTS C_DEPS)
    if(dep MATCHES "::")
      list(APPEND deps ${dep})
      set(ORV_COMPONENT_LINKS ${ORV_COMPONENT_LINKS} ${dep} CACHE INTERNAL "")
    elseif(TARGET orv_${dep})
      list(APPEND deps orv_${dep})
    endif()
  endforeach()
  add_library(orv_${name}_objects OBJECT ${sources})
  target_include_directories(orv_${name}_objects PUBLIC
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/src>)
  target_compile_definitions(orv_${name}_objects PRIVATE ORV_BUILDING_LIBRARY)
  foreach(dep IN LISTS deps)
    if(dep MATCHES "::")
      target_link_libraries(orv_${name}_objects PUBLIC ${dep})
    else()
      target_link_libraries(orv_${name}_objects PUBLIC ${dep}_objects)
    endif()
  endforeach()
  add_library(orv_${name} STATIC $<TARGET_OBJECTS:orv_${name}_objects>)
  target_include_directories(orv_${name} PUBLIC
    ${PROJECT_SOURCE_DIR}/include ${PROJECT_SOURCE_DIR}/src)
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
