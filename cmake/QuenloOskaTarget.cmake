# quenlooska_target(<target>): what every target of ours is compiled with. All of it is PRIVATE, so nothing reaches a host.
function(quenlooska_target target)
  target_compile_features(${target} PUBLIC cxx_std_20)
  set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF POSITION_INDEPENDENT_CODE ON
                        CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
  # Map coordinates are a product and a sum, rounded one after the other; Arm compilers fuse the two by default.
  target_compile_options(${target} PRIVATE -ffp-contract=off)
  if(QUENLOOSKA_DEVELOPER_WARNINGS)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual
                           -Wconversion -Wsign-conversion -Wold-style-cast -Wcast-qual -Wundef -Werror
                           # Labelled arguments are aggregates: what is left out has its default.
                           -Wno-missing-field-initializers
                           # GCC 12 sees overlaps in plain string concatenation that are not there.
                           $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
  endif()
endfunction()

# quenlooska_test(<name> SOURCES... [LINK libraries...] [ENVIRONMENT variable=value...]): one test program; ctest runs each
# of its tests in a process of its own, because much of the kit's state is process-wide.
function(quenlooska_test name)
  cmake_parse_arguments(arg "" "" "SOURCES;LINK;ENVIRONMENT" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  quenlooska_target(${name})
  target_link_libraries(${name} PRIVATE ${arg_LINK} GTest::gtest_main GTest::gmock)
  gtest_discover_tests(${name} NO_PRETTY_VALUES DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 120 ENVIRONMENT "${arg_ENVIRONMENT}")
endfunction()
