# One place for every compiler flag of the project.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_C_EXTENSIONS OFF)
set(ZENTRA_OPTIMISATION "-O2" CACHE STRING "What Release builds are optimised with; results do not depend on it")
set(CMAKE_CXX_FLAGS_RELEASE "${ZENTRA_OPTIMISATION} -DNDEBUG")
set(CMAKE_C_FLAGS_RELEASE "${ZENTRA_OPTIMISATION} -DNDEBUG")
set(CMAKE_POSITION_INDEPENDENT_CODE ${UNIX})

# Results are the same to the last bit on every build: SSE arithmetic only, one rounding per operation
# (no fused multiply-add), no reassociation. Never add -ffast-math or -mfma without -ffp-contract=off.
add_compile_options(-msse2 -mfpmath=sse -ffp-contract=off)

# Whatever CMAKE_CXX_FLAGS says: without it, kernels with wide registers crash (see cmake/Win64Toolchain.cmake).
if(ZENTRA_UNALIGNED_VECTOR_MOVES)
  add_compile_options($<$<COMPILE_LANGUAGE:C,CXX>:-Wa,-muse-unaligned-vector-move>)
endif()

# Two builds of one commit are byte-identical, wherever the sources and the build folder are.
add_compile_options(-ffile-prefix-map=${PROJECT_SOURCE_DIR}/= -ffile-prefix-map=${PROJECT_BINARY_DIR}=build)

if(WIN32)
  add_compile_definitions(WINVER=0x0601 _WIN32_WINNT=0x0601 WIN32_LEAN_AND_MEAN NOMINMAX)
  # Everything static: the host needs no runtime DLL of ours.
  add_link_options(-static -static-libgcc -static-libstdc++ -Wl,--no-insert-timestamp)
endif()

if(ZENTRA_SANITIZE)
  # The check of virtual calls needs the run-time types that the library does without.
  add_compile_options(-fsanitize=address,undefined -fno-sanitize=vptr -fno-sanitize-recover=all
    -fno-omit-frame-pointer -O1 -g1)
  add_link_options(-fsanitize=address,undefined -fuse-ld=lld)
endif()

if(ZENTRA_COVERAGE)
  add_compile_options(-fprofile-instr-generate -fcoverage-mapping)
  add_link_options(-fprofile-instr-generate)
endif()

if(ZENTRA_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link,address,undefined,float-cast-overflow
    -fno-sanitize-recover=all -fno-omit-frame-pointer -O1)
  add_link_options(-fsanitize=address,undefined,float-cast-overflow)
endif()

# Presets whose sources the native build has compiled one by one compile them in groups: most of the time goes into
# headers. The library is compiled file by file wherever it ships; under sanitizers it need not be.
set(ZENTRA_GROUP_LIBRARY OFF)
if(CMAKE_UNITY_BUILD AND (ZENTRA_SANITIZE OR ZENTRA_FUZZ))
  set(ZENTRA_GROUP_LIBRARY ON)
endif()

# Headers of other people that take longer to read than the sources that include them. Groups read them once anyway.
function(zentra_read_once target)
  if(NOT CMAKE_UNITY_BUILD)
    target_precompile_headers(${target} PRIVATE ${ARGN})
  endif()
endfunction()

# Our own sources: warnings are errors.
function(zentra_warnings target)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wshadow -Wconversion -Werror
    $<$<COMPILE_LANGUAGE:CXX>:-Wold-style-cast -Wnon-virtual-dtor -Woverloaded-virtual>)
endfunction()

# Tests themselves are not optimised: what they call is, their own loops are short, and they build in half the time.
function(zentra_test_code target)
  zentra_warnings(${target})
  target_compile_options(${target} PRIVATE -O0)
endfunction()

# What runs inside a host: no exceptions, no run-time types, unused functions dropped at link time, and unwind data only
# where the toolchain says that the platform asks for it.
function(zentra_library_code target)
  zentra_warnings(${target})
  set_target_properties(${target} PROPERTIES UNITY_BUILD ${ZENTRA_GROUP_LIBRARY})
  target_compile_options(${target} PRIVATE
    $<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions -fno-rtti -fno-threadsafe-statics>
    $<$<COMPILE_LANGUAGE:CXX>:$<IF:$<BOOL:${ZENTRA_UNWIND_TABLES}>,-fasynchronous-unwind-tables,-fno-asynchronous-unwind-tables>>
    $<$<BOOL:${WIN32}>:-g> -ffunction-sections -fdata-sections -fvisibility=hidden)
  target_include_directories(${target} PUBLIC ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/include)
endfunction()

# What is compiled for one instruction set, always optimised.
set(ZENTRA_INSTRUCTION_SETS sse2 avx2 avx512)
set(zentra_flags_sse2)
set(zentra_flags_avx2 -mavx2)
set(zentra_flags_avx512 -mavx512f -mavx512dq -mavx512bw -mavx512vl -mprefer-vector-width=512)
function(zentra_kernel_code target set)
  zentra_library_code(${target})
  separate_arguments(optimisation UNIX_COMMAND "${ZENTRA_OPTIMISATION}")
  # GCC 12 finds its own AVX-512 intrinsics uninitialised; they are so on purpose.
  target_compile_options(${target} PRIVATE ${zentra_flags_${set}} ${optimisation}
    $<$<CXX_COMPILER_ID:GNU>:-Wno-uninitialized -Wno-maybe-uninitialized>)
  target_compile_definitions(${target} PRIVATE Z3D_RECORDS_ONLY)
endfunction()
