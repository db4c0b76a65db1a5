# cmake -DSOURCE=DIR -DOUT=FILE -P KalmiraCommit.cmake
# Writes the C++ source that knows the commit of the tree in DIR, and leaves it alone where it says so already. Run at
# each build: what git says changes without CMake.

# What git says to the arguments behind `answer`; FALSE where it fails or is not there.
function(ask_git answer)
  execute_process(COMMAND git --no-optional-locks -C ${SOURCE} ${ARGN}
    RESULT_VARIABLE failed OUTPUT_VARIABLE said ERROR_QUIET OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(failed)
    set(said FALSE)
  endif()
  set(${answer} "${said}" PARENT_SCOPE)
endfunction()

set(commit "")
# Of an unpacked archive inside another repository, that one knows nothing: ours begins where the source does.
ask_git(below rev-parse --show-prefix)
if(below STREQUAL "")
  ask_git(commit rev-parse --short HEAD)
  ask_git(changes status --porcelain --untracked-files=no)
  if(commit AND changes)
    string(APPEND commit "+")
  endif()
endif()
if(NOT commit)
  # git archive writes its commit into this file.
  set(commit "")
  if(EXISTS ${SOURCE}/COMMIT)
    file(STRINGS ${SOURCE}/COMMIT archived LIMIT_COUNT 1)
  endif()
  if(archived MATCHES "^[0-9a-f]+$")
    set(commit ${archived})
  endif()
endif()
file(CONFIGURE OUTPUT ${OUT} @ONLY CONTENT [[
#include "commit.h"

std::string_view kalmira::builtCommit() { return "@commit@"; }
]])
