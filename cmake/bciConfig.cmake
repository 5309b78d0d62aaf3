# The targets bci::bci (shared) and bci::bci_static.
include(${CMAKE_CURRENT_LIST_DIR}/bciTargets.cmake)
