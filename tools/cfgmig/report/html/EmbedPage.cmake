# Puts the pieces of the page into a C++ source file.
# Usage: cmake -D OUTPUT=file.cpp -D PAGE=page.html -D STYLE=page.css -D "SCRIPTS=a.js|b.js" -P EmbedPage.cmake
cmake_minimum_required(VERSION 3.25)

# Each script stands in a block of its own, so that their names do not meet.
string(REPLACE "|" ";" scripts "${SCRIPTS}")
set(script "'use strict';\n")
foreach(file IN LISTS scripts)
  file(READ "${file}" text)
  string(APPEND script "{\n${text}}\n")
endforeach()
file(READ "${PAGE}" page)
file(READ "${STYLE}" style)

foreach(piece page style script)
  # What would end the element or the literal early.
  if("${${piece}}" MATCHES "\\)piece\"" OR (NOT piece STREQUAL "page" AND "${${piece}}" MATCHES "</(script|style)|<!--"))
    message(FATAL_ERROR "${piece}: a character sequence that cannot be embedded")
  endif()
endforeach()
string(SHA256 style_sha256 "${style}")
string(SHA256 script_sha256 "${script}")

file(WRITE "${OUTPUT}" "// Made from page.html, page.css and the scripts. Edit those.
#include \"report/html/PagePieces.h\"

namespace tool::html {

const PagePieces kPagePieces = {
    R\"piece(${page})piece\",
    R\"piece(${style})piece\",
    R\"piece(${script})piece\",
    \"${style_sha256}\",
    \"${script_sha256}\",
};

}  // namespace tool::html
")
