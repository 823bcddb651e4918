# What every target of the project is compiled with.
add_library(velandoc_options INTERFACE)
target_include_directories(velandoc_options INTERFACE ${PROJECT_SOURCE_DIR})
# -Wdelete-non-virtual-dtor and not -Wnon-virtual-dtor: no COM interface has a virtual destructor.
# CMAKE_COMPILE_WARNING_AS_ERROR makes warnings errors. Only ./test sets it: other compilers than those of the tests
# may warn of more.
target_compile_options(velandoc_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wdelete-non-virtual-dtor
  -Woverloaded-virtual -Wcast-align -Wformat=2)
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # g++ 12 takes every optimised "text" + string for an overlapping copy (its bug 105651, mended in 13).
  target_compile_options(velandoc_options INTERFACE -Wno-restrict)
endif()
if(WIN32)
  target_compile_definitions(velandoc_options INTERFACE
    UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX _WIN32_WINNT=0x0601 _GLIBCXX_ASSERTIONS)
  # DWARF 4 is what Wine's own backtraces read. The programs are packaged as they are built: their symbols name no folder
  # of the machine.
  target_compile_options(velandoc_options INTERFACE -gdwarf-4
    -fdebug-prefix-map=${PROJECT_SOURCE_DIR}=velandoc)
  # One file to ship: nothing but the system's libraries is imported.
  target_link_options(velandoc_options INTERFACE -static)
else()
  target_include_directories(velandoc_options SYSTEM INTERFACE
    ${PROJECT_SOURCE_DIR}/platform/posix/com/sdk)
  find_package(Threads REQUIRED)
  target_link_libraries(velandoc_options INTERFACE Threads::Threads)
endif()
if(VELANDOC_SANITIZE)
  target_compile_options(velandoc_options INTERFACE
    -fsanitize=${VELANDOC_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -g1)  # reports name lines
  target_link_options(velandoc_options INTERFACE -fsanitize=${VELANDOC_SANITIZE})
endif()
if(VELANDOC_FUZZ)
  target_compile_options(velandoc_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

# velandoc_library(NAME DEPENDENCIES...): a static library of this folder's sources.
function(velandoc_library name)
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  if(sources)
    add_library(${name} STATIC ${sources})
    target_link_libraries(${name} PUBLIC velandoc_options ${ARGN})
  else()
    add_library(${name} INTERFACE)
    target_link_libraries(${name} INTERFACE velandoc_options ${ARGN})
  endif()
endfunction()
