# Makes the Linux home's resource table of the resource script: cmake -DSCRIPT=velandoc.rc -DOUTPUT=file.cpp -P embed.cmake
#
# Every line of the form  number TYPE "file"  is taken, but TYPELIB: nothing on Linux reads a compiled type library. An
# indented line of the form  number "text"  is a row of the string table; its text is ASCII without escapes.
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
file(STRINGS ${SCRIPT} lines REGEX "^ +[0-9]+ \"")
set(strings "")
foreach(line ${lines})
  if(NOT line MATCHES "^ +([0-9]+) \"([ -!#-:<-Z^-~]+)\"$")
    message(FATAL_ERROR "${SCRIPT}: a row of the string table with an escape: ${line}")
  endif()
  string(APPEND strings "    {${CMAKE_MATCH_1}, u\"${CMAKE_MATCH_2}\"},\n")
endforeach()
if(strings STREQUAL "")
  message(FATAL_ERROR "${SCRIPT} has no string table")
endif()
file(WRITE ${OUTPUT} "// Made by embed.cmake of velandoc.rc.
#include \"platform/posix/embedded_resources.h\"

namespace velandoc {
namespace {

${arrays}
constexpr EmbeddedResource kResources[] = {
${rows}};

constexpr EmbeddedString kStrings[] = {
${strings}};

}  // namespace

std::span<const EmbeddedResource> EmbeddedResources() { return kResources; }

std::span<const EmbeddedString> EmbeddedStrings() { return kStrings; }

}  // namespace velandoc
")
