# Man pages and shell completions, written by the built programs themselves from their tables of options.

# kalmira_manuals(program...)
# ${CMAKE_BINARY_DIR}/manual/NAME.1 for man, NAME for bash, _NAME for zsh; the target `manuals`.
function(kalmira_manuals)
  set(folder ${CMAKE_BINARY_DIR}/manual)
  file(MAKE_DIRECTORY ${folder})
  set(files "")
  foreach(program IN LISTS ARGN)
    set(own ${folder}/${program}.1 ${folder}/${program} ${folder}/_${program})
    add_custom_command(OUTPUT ${own} DEPENDS ${program} VERBATIM
      COMMAND ${program} --manual man > ${folder}/${program}.1
      COMMAND ${program} --manual bash > ${folder}/${program}
      COMMAND ${program} --manual zsh > ${folder}/_${program})
    list(APPEND files ${own})
  endforeach()
  set(all "")
  if(KALMIRA_MANUALS)
    set(all ALL)
  endif()
  add_custom_target(manuals ${all} DEPENDS ${files})
endfunction()
