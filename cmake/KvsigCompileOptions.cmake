# Options that every kvsig target shares; interface users of the library get none of them.
add_library(kvsig_options INTERFACE)
target_compile_features(kvsig_options INTERFACE cxx_std_20)
target_include_directories(kvsig_options INTERFACE "${PROJECT_SOURCE_DIR}")
target_compile_options(
  kvsig_options
  INTERFACE
    # Fused multiply-adds would change results from one machine to the next.
    -ffp-contract=off
    -fno-math-errno
    -Wall
    -Wextra
    -Wpedantic
    -Wshadow
    -Wconversion
    -Wsign-conversion
    -Wold-style-cast
    -Wnon-virtual-dtor
    # COM objects have no virtual destructor in their interface: Release() destroys them.
    -Wno-delete-non-virtual-dtor)
if(KVSIG_WERROR)
  target_compile_options(kvsig_options INTERFACE -Werror)
endif()
if(KVSIG_SANITIZE)
  # -O1 and line tables: the instrumented code of the tests would take longer to optimise than to
  # run.
  target_compile_options(kvsig_options INTERFACE -fsanitize=${KVSIG_SANITIZE} -O1 -g1
                                                 -fno-sanitize-recover=all -fno-omit-frame-pointer)
  # Loops are for the machine's vectors where nothing is instrumented.
  target_compile_options(kvsig_options INTERFACE -Wno-pass-failed)
  target_link_options(kvsig_options INTERFACE -fsanitize=${KVSIG_SANITIZE})
endif()
