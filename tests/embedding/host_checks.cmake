# Included after project() of a host: no flag of the kit may reach the host, and the kit's headers must compile with its flags.
cmake_language(DEFER CALL target_compile_options host
               PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Werror -fno-exceptions -fno-rtti)
function(check_that_no_options_leak)
  get_target_property(leaked QuenloOska::oska INTERFACE_COMPILE_OPTIONS)
  if(leaked)
    message(FATAL_ERROR "compile options reach the host: ${leaked}")
  endif()
endfunction()
cmake_language(DEFER CALL check_that_no_options_leak)
