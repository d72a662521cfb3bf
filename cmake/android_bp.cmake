# Reads properties of the one module in Android.bp, as bpfmt lays it out.
#
# zo_bp_list(FILE PROPERTY OUT): the strings of a list property
# ("srcs: [ ... ]"), in file order; empty when the module has none.
# zo_bp_string(FILE PROPERTY OUT): the value of a string property
# ("cpp_std: "c++17"").
# Comment lines are skipped, so a commented-out entry is never read.

function(zo_bp_read file out)
  file(STRINGS ${file} lines)
  set(text "")
  foreach(line IN LISTS lines)
    if(NOT line MATCHES "^[ \t]*//")
      string(APPEND text " ${line}")
    endif()
  endforeach()
  set(${out} "${text}" PARENT_SCOPE)
endfunction()

function(zo_bp_list file property out)
  zo_bp_read(${file} text)
  set(items "")
  if(text MATCHES "[ \t{]${property}: \\[([^]]*)\\]")
    string(REGEX MATCHALL "\"[^\"]*\"" quoted "${CMAKE_MATCH_1}")
    foreach(item IN LISTS quoted)
      string(REGEX REPLACE "^\"(.*)\"$" "\\1" item "${item}")
      list(APPEND items "${item}")
    endforeach()
  endif()
  set(${out} "${items}" PARENT_SCOPE)
endfunction()

function(zo_bp_string file property out)
  zo_bp_read(${file} text)
  set(value "")
  if(text MATCHES "[ \t{]${property}: \"([^\"]*)\"")
    set(value "${CMAKE_MATCH_1}")
  endif()
  set(${out} "${value}" PARENT_SCOPE)
endfunction()
