# Fuzz harnesses. Each fuzz/NAME_fuzz.cpp defines LLVMFuzzerTestOneInput and
# is built two ways:
#   - with BASICUTILS_BUILD_FUZZERS (clang, the `fuzz` preset): the libFuzzer
#     program NAME_fuzz, for long runs (scripts/fuzz.sh);
#   - with BASICUTILS_BUILD_TESTS (any compiler, every ordinary preset): the
#     program NAME_replay, linked with fuzz/StandaloneDriver.cpp, registered
#     as the CTest test fuzz.NAME. It replays fuzz/corpus/NAME/ and then a
#     fixed-seed batch of BASICUTILS_FUZZ_REPLAY_INPUTS generated inputs.
# A new harness joins both by existing; its corpus folder must not be empty.
set(BASICUTILS_FUZZ_REPLAY_INPUTS 3000 CACHE STRING
    "Generated inputs each fuzz replay test runs after its corpus")

function(basicutils_add_fuzz_test harness)
  get_filename_component(_file ${harness} NAME_WE)
  string(REGEX REPLACE "_fuzz$" "" _name ${_file})
  if(BASICUTILS_BUILD_FUZZERS)
    add_executable(${_file} ${harness})
    target_compile_options(${_file} PRIVATE -fsanitize=fuzzer,address,undefined)
    target_link_options(${_file} PRIVATE -fsanitize=fuzzer,address,undefined)
    target_link_libraries(${_file} PRIVATE basicutils)
  endif()
  if(BASICUTILS_BUILD_TESTS)
    add_executable(${_name}_replay ${harness} ${PROJECT_SOURCE_DIR}/fuzz/StandaloneDriver.cpp)
    target_link_libraries(${_name}_replay PRIVATE basicutils)
    add_test(NAME fuzz.${_name}
      COMMAND ${_name}_replay ${PROJECT_SOURCE_DIR}/fuzz/corpus/${_name} ${BASICUTILS_FUZZ_REPLAY_INPUTS})
  endif()
endfunction()

file(GLOB _basicutils_harnesses CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/fuzz/*_fuzz.cpp)
foreach(_harness IN LISTS _basicutils_harnesses)
  basicutils_add_fuzz_test(${_harness})
endforeach()
