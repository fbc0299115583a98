# Comes behind project() of a host: none of the kit's flags may reach it, and the kit's headers must bear a host's own.
cmake_language(DEFER CALL target_compile_options host
               PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Werror -fno-exceptions -fno-rtti)
function(check_that_no_options_leak)
  get_target_property(leaked QuenloOska::oska INTERFACE_COMPILE_OPTIONS)
  if(leaked)
    message(FATAL_ERROR "compile options reach the host: ${leaked}")
  endif()
endfunction()
cmake_language(DEFER CALL check_that_no_options_leak)
