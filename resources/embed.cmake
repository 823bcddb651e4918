# Makes the Linux home's resource table of the resource script: cmake -DSCRIPT=velandoc.rc -DOUTPUT=file.cpp -P embed.cmake
#
# Every line of the form  number TYPE "file"  is taken, but TYPELIB: nothing on Linux reads a compiled type library.
get_filename_component(folder ${SCRIPT} DIRECTORY)
file(STRINGS ${SCRIPT} lines REGEX "^[0-9]+ [A-Z]+ \"[^\"]+\"$")
set(arrays "")
set(rows "")
set(count 0)
foreach(line ${lines})
  string(REGEX MATCH "^([0-9]+) ([A-Z]+) \"([^\"]+)\"$" matched "${line}")
  set(id ${CMAKE_MATCH_1})
  set(type ${CMAKE_MATCH_2})
  set(file ${CMAKE_MATCH_3})
  if(type STREQUAL "TYPELIB")
    continue()
  endif()
  file(READ ${folder}/${file} bytes HEX)
  string(LENGTH "${bytes}" size)
  math(EXPR size "${size} / 2")
  string(REGEX REPLACE "([0-9a-f][0-9a-f])" "\\\\x\\1" bytes "${bytes}")
  string(APPEND arrays "constexpr char k${type}${id}[] = \"${bytes}\";\n")
  string(APPEND rows "    {u\"${type}\", ${id}, {k${type}${id}, ${size}}},\n")
  math(EXPR count "${count} + 1")
endforeach()
if(count EQUAL 0)
  message(FATAL_ERROR "${SCRIPT} lists no files")
endif()
file(WRITE ${OUTPUT} "// Made by embed.cmake of velandoc.rc.
#include \"platform/posix/embedded_resources.h\"

namespace velandoc {
namespace {

${arrays}
constexpr EmbeddedResource kResources[] = {
${rows}};

}  // namespace

std::span<const EmbeddedResource> EmbeddedResources() { return kResources; }

}  // namespace velandoc
")
