# What every target of this project is compiled with. Linked PRIVATE, so nothing leaks to users.
set(SMARTDIAGNOSE_SANITIZE "" CACHE STRING "Sanitizers, as -fsanitize= takes them; empty for none")

add_library(smartdiagnose_flags INTERFACE)
target_compile_options(smartdiagnose_flags INTERFACE
  # The same data must give the same report on every machine; AArch64 would fuse multiply-add by default.
  -ffp-contract=off
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wcast-qual -Wformat=2 -Wnull-dereference
  -Wundef -Wvla -Wswitch-enum -Wimplicit-fallthrough -Wdouble-promotion
  $<$<COMPILE_LANGUAGE:CXX>:-Wold-style-cast -Wnon-virtual-dtor -Woverloaded-virtual -Wmissing-declarations
    -Wextra-semi -Wsuggest-override>
  $<$<AND:$<COMPILE_LANGUAGE:CXX>,$<CXX_COMPILER_ID:GNU>>:-Wduplicated-cond -Wduplicated-branches -Wlogical-op>
  $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety -Wreserved-identifier -Wreserved-macro-identifier>)
target_compile_definitions(smartdiagnose_flags INTERFACE
  $<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>)
target_include_directories(smartdiagnose_flags INTERFACE ${PROJECT_SOURCE_DIR})

if(SMARTDIAGNOSE_SANITIZE)
  set(sanitize -fsanitize=${SMARTDIAGNOSE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_compile_options(${sanitize})
  add_link_options(${sanitize})
endif()

# For what CI compiles longer than it runs. Without its optimiser clang takes less than half the time for a file that
# the sanitizers watch; g++ would gain nothing over preset tsan's -Og. Fuzzing campaigns want speed.
set(quick_to_compile "")
if(SMARTDIAGNOSE_SANITIZE AND CMAKE_CXX_COMPILER_ID STREQUAL Clang AND NOT SMARTDIAGNOSE_SANITIZE MATCHES fuzzer)
  set(quick_to_compile -O0)
endif()
