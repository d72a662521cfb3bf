# Reads properties of a module of Android.bp, as bpfmt lays it out: each
# module starts with a line "type {" and ends with a line "}".
#
# zo_bp_list(FILE MODULE PROPERTY OUT): the strings of a list property
# ("srcs: [ ... ]") of the module named MODULE, in file order; empty when the
# module has none.
# zo_bp_string(FILE MODULE PROPERTY OUT): the value of a string property
# ("cpp_std: "c++17"").
# Comment lines are skipped, so a commented-out entry is never read.

function(zo_bp_read file module out)
  file(STRINGS ${file} lines)
  set(text "")
  set(found "")
  foreach(line IN LISTS lines)
    if(line MATCHES "^[a-z_]+ {$")
      set(text "")
    elseif(line MATCHES "^}$")
      if(text MATCHES "[ \t{]name: \"${module}\"")
        set(found "${text}")
      endif()
    elseif(NOT line MATCHES "^[ \t]*//")
      string(APPEND text " ${line}")
    endif()
  endforeach()
  set(${out} "${found}" PARENT_SCOPE)
endfunction()

function(zo_bp_list file module property out)
  zo_bp_read(${file} ${module} text)
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

function(zo_bp_string file module property out)
  zo_bp_read(${file} ${module} text)
  set(value "")
  if(text MATCHES "[ \t{]${property}: \"([^\"]*)\"")
    set(value "${CMAKE_MATCH_1}")
  endif()
  set(${out} "${value}" PARENT_SCOPE)
endfunction()
