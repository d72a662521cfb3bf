# Fails when the code the README shows between "<!-- FILE -->" and
# "<!-- end -->" (indented by four blanks) differs from FILE, which the build
# compiles: the README's example cannot rot.
# Usage: cmake -DREADME=README.md -DROOT=DIR -DFILE=examples/minimal_service.cc -P check_readme_example.cmake
file(READ ${README} readme)
string(FIND "${readme}" "<!-- ${FILE} -->\n" begin)
string(FIND "${readme}" "<!-- end -->" end)
if(begin EQUAL -1 OR end LESS begin)
  message(FATAL_ERROR "${README} shows no block <!-- ${FILE} --> ... <!-- end -->")
endif()
string(LENGTH "<!-- ${FILE} -->\n" marker)
math(EXPR begin "${begin} + ${marker}")
math(EXPR length "${end} - ${begin}")
string(SUBSTRING "${readme}" ${begin} ${length} shown)
# Line by line; a leading line end stands for the first line's start.
string(REPLACE "\n    " "\n" shown "\n${shown}")
string(SUBSTRING "${shown}" 1 -1 shown)
file(READ ${ROOT}/${FILE} source)
if(NOT shown STREQUAL source)
  message(FATAL_ERROR "${README} shows another ${FILE} than the one built:\n${shown}")
endif()
