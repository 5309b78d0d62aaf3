# The check of virtual calls needs run-time type information, which the library has none of.
if(BCI_SANITIZE STREQUAL "address")
  add_compile_options(-O1 -fno-omit-frame-pointer
    -fsanitize=address,undefined -fno-sanitize=vptr -fno-sanitize-recover=all)
  add_link_options(-fsanitize=address,undefined -fno-sanitize=vptr)
elseif(BCI_SANITIZE STREQUAL "thread")
  add_compile_options(-O1 -fno-omit-frame-pointer -fsanitize=thread)
  add_link_options(-fsanitize=thread)
endif()
# Optimized, for the fuzzer runs every input that it can.
if(BCI_FUZZ)
  add_compile_options(-O2 -fno-omit-frame-pointer
    -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize=vptr -fno-sanitize-recover=all)
  add_link_options(-fsanitize=address,undefined -fno-sanitize=vptr)
endif()
