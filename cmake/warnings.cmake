# Warnings for all of this project's own code.
set(BCI_WARNINGS -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
if(BCI_WERROR)
  list(APPEND BCI_WARNINGS -Werror)
endif()
