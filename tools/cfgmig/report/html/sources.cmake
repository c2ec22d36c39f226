# The HTML report, as part of the object library that includes this file. The pieces of its page stay files of their
# own kind and are put into the program by the build.
set(html "${CMAKE_CURRENT_LIST_DIR}")
set(scripts "${html}/entries.js" "${html}/contents.js" "${html}/filters.js" "${html}/search.js")
list(JOIN scripts "|" joined)
add_custom_command(
    OUTPUT "${CMAKE_CURRENT_BINARY_DIR}/PagePieces.cpp"
    COMMAND "${CMAKE_COMMAND}" -D "OUTPUT=${CMAKE_CURRENT_BINARY_DIR}/PagePieces.cpp" -D "PAGE=${html}/page.html"
            -D "STYLE=${html}/page.css" -D "SCRIPTS=${joined}" -P "${html}/EmbedPage.cmake"
    DEPENDS "${html}/EmbedPage.cmake" "${html}/page.html" "${html}/page.css" ${scripts}
    COMMENT "Embedding the pieces of the HTML report" VERBATIM)
target_sources(cfgmig_tool_objects PRIVATE
    "${html}/Account.cpp"
    "${html}/BehindList.cpp"
    "${html}/EntryRows.cpp"
    "${html}/FindingList.cpp"
    "${html}/HtmlReport.cpp"
    "${html}/HtmlText.cpp"
    "${html}/Inputs.cpp"
    "${html}/Page.cpp"
    "${html}/Sums.cpp"
    "${html}/Tree.cpp"
    "${html}/Verdict.cpp"
    "${html}/Words.cpp"
    "${CMAKE_CURRENT_BINARY_DIR}/PagePieces.cpp")
