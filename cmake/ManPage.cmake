# Writes the manual page of the orvanta host from its own help texts: the overview that
# `orvanta --help` prints and each command's `orvanta help COMMAND`, so that page and program never
# disagree. Run at build time on the built host:
#   cmake -DTOOL=path/to/orvanta -DOUTPUT=orvanta.1 -P ManPage.cmake

# What the host prints for the arguments given, fit for a no-fill block of roff: a backslash is
# written \e, a minus \-, and a line may not start with a control character.
function(help_text output)
  execute_process(COMMAND ${TOOL} ${ARGN} OUTPUT_VARIABLE text RESULT_VARIABLE status)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "${TOOL} ${ARGN} failed (${status})")
  endif()
  string(REPLACE "\\" "\\e" text "${text}")
  string(REPLACE "-" "\\-" text "${text}")
  string(REGEX REPLACE "\n([.'])" "\n\\\\&\\1" text "\n${text}")
  string(SUBSTRING "${text}" 1 -1 text)
  set(${output} "${text}" PARENT_SCOPE)
endfunction()

execute_process(COMMAND ${TOOL} --help OUTPUT_VARIABLE overview)
execute_process(COMMAND ${TOOL} --version OUTPUT_VARIABLE version OUTPUT_STRIP_TRAILING_WHITESPACE)
string(REGEX MATCHALL "\n  orvanta [a-z-]+" commands "${overview}")

help_text(synopsis --help)
set(page ".TH ORVANTA 1 \"\" \"${version}\" \"User Commands\"\n")
string(APPEND page ".SH NAME\norvanta \\- look into, convert and edit pictures and picture catalogues\n")
string(APPEND page ".SH SYNOPSIS\n.nf\n${synopsis}.fi\n.SH COMMANDS\n")
foreach(line IN LISTS commands)
  string(REPLACE "\n  orvanta " "" command "${line}")
  help_text(help help ${command})
  string(APPEND page ".SS ${command}\n.nf\n${help}.fi\n")
endforeach()
file(WRITE ${OUTPUT} "${page}")
