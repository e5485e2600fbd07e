# Writes the manual page of orvwebpage from its help: the overview from
# --help, then each command's options and the key notation.
# cmake -DTOOL=... -DHELP2MAN=... -DOUT=... -P OrvManPage.cmake
set(include_file "${OUT}.include")
set(text "[COMMANDS]\n")
foreach(command url keys search links nodes estimate)
  execute_process(COMMAND "${TOOL}" help ${command} OUTPUT_VARIABLE help RESULT_VARIABLE status)
  if(NOT status EQUAL 0)
    continue()
  endif()
  string(REPLACE "\\" "\\e" help "${help}")
  string(REGEX REPLACE "\n\\." "\n\\\\&." help "${help}")
  string(APPEND text ".SS ${command}\n.nf\n${help}.fi\n")
endforeach()
string(APPEND text [=[
[KEY NOTATION]
.TP
.B \e$
the host is on the site: it contains the site domain (the entry host behind its first dot)
.TP
.B ^\e$
the host is off the site
.TP
.B /\es
a directory whose name starts with a letter
.TP
.B /\ed
a directory whose name starts with a digit
.TP
.B /\eS
a directory (or a last path segment) that starts with anything else
.TP
.B \eE
the end of an alternative: (.htm\eE,.html\eE) is "ends in .htm or .html"
.TP
.B ^?
no query
[EXIT STATUS]
0 on success, 1 when an input could not be read (the reason is on stderr), 2 for a usage
error, 130 when estimate was interrupted (what was estimated so far is printed).
[LICENSE]
Apache License 2.0.
]=])
file(WRITE "${include_file}" "${text}")
execute_process(COMMAND "${HELP2MAN}" --no-info --no-discard-stderr --section 1
  --name "what the shape of URLs, links and pages says about a site"
  --include "${include_file}" --output "${OUT}" "${TOOL}" RESULT_VARIABLE status)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "help2man failed")
endif()
