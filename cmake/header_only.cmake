# velandoc_header_only: header-only libraries of the build machine, for the cross compiler too. The folder shows it
# these and no other of the machine's headers.
set(header_only ${CMAKE_BINARY_DIR}/header-only)
file(MAKE_DIRECTORY ${header_only})
foreach(folder nlohmann CLI)
  file(CREATE_LINK /usr/include/${folder} ${header_only}/${folder} SYMBOLIC)
endforeach()
add_library(velandoc_header_only INTERFACE)
target_include_directories(velandoc_header_only SYSTEM INTERFACE ${header_only})
