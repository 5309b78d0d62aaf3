# generated.cmake: writes what COMMAND generates into DIRECTORY, which is made anew.
file(REMOVE_RECURSE ${DIRECTORY})

function(generate file)
  cmake_path(GET file PARENT_PATH parent)
  file(MAKE_DIRECTORY ${DIRECTORY}/${parent})
  execute_process(COMMAND ${COMMAND} gen ${ARGN} OUTPUT_FILE ${DIRECTORY}/${file} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

generate(man/man1/bci.1 man)
file(STRINGS ${DIRECTORY}/man/man1/bci.1 references REGEX "^\\.BR bci\\\\-")
foreach(reference IN LISTS references)
  string(REGEX REPLACE "^\\.BR bci\\\\-([a-z-]*).*" "\\1" verb "${reference}")
  generate(man/man1/bci-${verb}.1 man ${verb})
endforeach()
generate(share/bash-completion/completions/bci completion bash)
generate(share/zsh/site-functions/_bci completion zsh)
generate(share/fish/vendor_completions.d/bci.fish completion fish)
file(TOUCH ${DIRECTORY}/complete)
