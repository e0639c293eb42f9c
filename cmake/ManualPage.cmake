# Writes a program's manual page from its own --help:
#   cmake -DPROGRAM=... -DBRIEF=... -DVERSION=... -DOUTPUT=... -P ManualPage.cmake
cmake_path(GET PROGRAM FILENAME name)
execute_process(COMMAND "${CMAKE_COMMAND}" -E env ORVEX_LANGUAGE=en "${PROGRAM}" --help OUTPUT_VARIABLE help COMMAND_ERROR_IS_FATAL ANY)
# What groff would read as its own: backslashes, hyphens, requests at the start of a line.
string(REPLACE "\\" "\\e" help "${help}")
string(REPLACE "-" "\\-" help "${help}")
string(REGEX REPLACE "(^|\n)([.'])" "\\1\\\\&\\2" help "${help}")
# The calls are the lines up to the first that is not indented.
if(NOT help MATCHES "^usage: ([^\n]*\n( [^\n]*\n)*)(.*)$")
    message(FATAL_ERROR "${PROGRAM} --help does not begin with its usage")
endif()
set(synopsis "${CMAKE_MATCH_1}")
set(description "${CMAKE_MATCH_3}")
string(REGEX REPLACE "\n +" "\n.br\n" synopsis "${synopsis}")
if(description)
    string(REGEX REPLACE "\n(.)" "\n.PP\n\\1" description "${description}")
    set(description ".SH DESCRIPTION\n${description}")
endif()
string(TOUPPER "${name}" title)
file(WRITE "${OUTPUT}.new" ".TH ${title} 1 \"\" \"OrvexCommon ${VERSION}\"\n.SH NAME\n${name} \\- ${BRIEF}\n.SH SYNOPSIS\n${synopsis}${description}")
file(RENAME "${OUTPUT}.new" "${OUTPUT}")
