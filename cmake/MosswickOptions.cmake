# Warnings, -Werror and sanitizers for Mosswick's own targets only: Qt's and GoogleTest's
# headers are included as system headers and never break the build.
set(MOSSWICK_SANITIZER_FLAGS "")
if(MOSSWICK_SANITIZE)
  set(MOSSWICK_SANITIZER_FLAGS -fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
endif()

function(mosswick_target_options target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
                                           -Wno-missing-field-initializers)
  if(MOSSWICK_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
  if(MOSSWICK_SANITIZER_FLAGS)
    target_compile_options(${target} PRIVATE ${MOSSWICK_SANITIZER_FLAGS})
    target_link_options(${target} PRIVATE ${MOSSWICK_SANITIZER_FLAGS})
  endif()
  if(MOSSWICK_FUZZ)
    target_compile_options(${target} PRIVATE -fsanitize=fuzzer-no-link,address,undefined)
    target_link_options(${target} PRIVATE -fsanitize=address,undefined)
  endif()
endfunction()
