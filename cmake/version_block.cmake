# velandoc_version_block(TARGET FILE KIND DESCRIPTION): the version block of a program or library for Windows; KIND is one of
# windres's names, VFT_DLL or VFT_APP.
function(velandoc_version_block target file kind description)
  set(script ${CMAKE_CURRENT_BINARY_DIR}/${file}.rc)
  configure_file(${PROJECT_SOURCE_DIR}/resources/version.rc.in ${script} @ONLY)
  enable_language(RC)
  target_sources(${target} PRIVATE ${script})
endfunction()
