# The functions that make every target of the project:
#
#   tavro_library(DEPENDS ...)    the library of the current folder of src/
#   tavro_model()                 the library of a compiled model, a folder of src/generated/
#   tavro_text_model(path)        the same of a model that is a text of that path, whose name it has
#   tavro_executive(name model)   a console executable around one compiled model
#   tavro_tests(MODEL model LINK ...)
#                                 the test executable of the current folder of tests/; its tests of a
#                                 compiled model take this one, the reference model unless told
#   tavro_benchmarks(LINK ...)    the benchmark executable of the current folder of bench/, with the
#                                 reference model unless told otherwise
#
# An include path is only as wide as the declared dependencies: each library exposes one private
# directory that holds a single link, named after its folder, to its sources. So
# #include "model/Atom.h" resolves only in a target that declares a dependency on model.

function(tavro_folder_name result)
  get_filename_component(name ${CMAKE_CURRENT_SOURCE_DIR} NAME)
  set(${result} ${name} PARENT_SCOPE)
endfunction()

function(tavro_library)
  cmake_parse_arguments(ARG "" "" "DEPENDS;EXCLUDE" ${ARGN})
  tavro_folder_name(folder)
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  foreach(excluded ${ARG_EXCLUDE})
    list(REMOVE_ITEM sources ${CMAKE_CURRENT_SOURCE_DIR}/${excluded})
  endforeach()
  add_library(tavro_${folder} STATIC ${sources})
  tavro_expose_includes(tavro_${folder} ${folder})
  foreach(dependency ${ARG_DEPENDS})
    target_link_libraries(tavro_${folder} PUBLIC tavro_${dependency})
  endforeach()
endfunction()

# *path* is what an include of one of its headers begins with.
function(tavro_expose_includes target path)
  set(root ${CMAKE_BINARY_DIR}/include/${target})
  get_filename_component(parent ${root}/${path} DIRECTORY)
  file(MAKE_DIRECTORY ${parent})
  file(CREATE_LINK ${CMAKE_CURRENT_SOURCE_DIR} ${root}/${path} SYMBOLIC)
  target_include_directories(${target} PUBLIC ${root})
endfunction()

function(tavro_model)
  tavro_folder_name(model)
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  add_library(tavro_${model} STATIC ${sources})
  tavro_expose_includes(tavro_${model} generated/${model})
  target_link_libraries(tavro_${model} PUBLIC tavro_run)
endfunction()

# The text is compiled in, and again when it changes: whoever links the model needs no file.
function(tavro_text_model path)
  get_filename_component(model ${path} NAME_WE)
  file(READ ${path} text)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${path})
  configure_file(${CMAKE_SOURCE_DIR}/cmake/text_model.cpp.in ${CMAKE_CURRENT_BINARY_DIR}/${model}.cpp @ONLY)
  add_library(tavro_${model} STATIC ${CMAKE_CURRENT_BINARY_DIR}/${model}.cpp)
  target_link_libraries(tavro_${model} PUBLIC tavro_language)
endfunction()

function(tavro_executive name model)
  add_executable(${name} ${CMAKE_SOURCE_DIR}/src/console/main.cpp)
  target_link_libraries(${name} PRIVATE tavro_${model} ${TAVRO_ENGINE})
  target_compile_definitions(${name} PRIVATE TAVRO_MODEL=${model}_model)
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
endfunction()

# One executable per folder of tests/, from every *_test.cpp in it: a test file cannot be left out.
function(tavro_tests)
  cmake_parse_arguments(ARG "" "MODEL" "LINK" ${ARGN})
  if(NOT ARG_MODEL)
    set(ARG_MODEL therm)
  endif()
  tavro_folder_name(folder)
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*_test.cpp
       ${CMAKE_CURRENT_SOURCE_DIR}/*_fixture.cpp)
  if(NOT sources)
    message(FATAL_ERROR "no tests in ${CMAKE_CURRENT_SOURCE_DIR}")
  endif()
  add_executable(tests_${folder} ${sources})
  target_include_directories(tests_${folder} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
  target_compile_definitions(tests_${folder} PRIVATE TAVRO_TESTED_MODEL=${ARG_MODEL}_model)
  target_link_libraries(tests_${folder} PRIVATE ${ARG_LINK})
  target_link_libraries(tests_${folder} PRIVATE GTest::gtest_main)
  target_precompile_headers(tests_${folder} PRIVATE <gtest/gtest.h>)
  # The engine is built as the preset says; what tests it need not be fast, but should compile so.
  target_compile_options(tests_${folder} PRIVATE -O0)
  set_target_properties(tests_${folder} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  gtest_discover_tests(tests_${folder} TEST_PREFIX "${folder}." DISCOVERY_TIMEOUT 60
                       WORKING_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR})
endfunction()

function(tavro_benchmarks)
  cmake_parse_arguments(ARG "" "" "LINK" ${ARGN})
  if(NOT ARG_LINK)
    set(ARG_LINK tavro_therm ${TAVRO_ENGINE})
  endif()
  tavro_folder_name(folder)
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*_bench.cpp)
  add_executable(bench_${folder} ${sources})
  # A benchmark may set what the engine does beside the plain version that the tests keep.
  target_include_directories(bench_${folder} PRIVATE ${CMAKE_SOURCE_DIR}/bench ${CMAKE_SOURCE_DIR}/tests)
  target_link_libraries(bench_${folder} PRIVATE ${ARG_LINK})
  target_link_libraries(bench_${folder} PRIVATE benchmark::benchmark_main)
  set_target_properties(bench_${folder} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bench)
endfunction()
