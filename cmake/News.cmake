# Reads NEWS, the one place that tells what each version has brought, for those who want it in other words: the changelog
# of the Debian package, and the releases in the description for software centres.
include(${CMAKE_CURRENT_LIST_DIR}/Days.cmake)

# The day as mail and Debian write it.
function(written_out result date)
    set(weekdays Thu Fri Sat Sun Mon Tue Wed)
    set(months Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec)
    days_since_1970(days ${date})
    math(EXPR weekday "${days} % 7")
    list(GET weekdays ${weekday} weekday)
    string(REGEX MATCH "^([0-9]+)-([0-9]+)-([0-9]+)$" _ ${date})
    math(EXPR month "${CMAKE_MATCH_2} - 1")
    list(GET months ${month} month)
    set(${result} "${weekday}, ${CMAKE_MATCH_3} ${month} ${CMAKE_MATCH_1} 12:00:00 +0000" PARENT_SCOPE)
endfunction()

# A version with its day in parentheses, an empty line, and the changes, each with a star and perhaps on several lines.
set(news_entry "([0-9.]+) \\(([0-9]+-[0-9]+-[0-9]+)\\)\n\n((  [* ] [^\n]+\n)+)\n*")

# What follows the title.
function(entries_of result news)
    string(REGEX MATCH "\n\n.*" text "${news}")
    string(STRIP "${text}" text)
    set(${result} "${text}\n" PARENT_SCOPE)
endfunction()

function(news_as_changelog result news)
    entries_of(text "${news}")
    string(REGEX REPLACE "${news_entry}"
        "marvelode-timer (\\1) unstable; urgency=medium\n\n\\3\n -- ${MARVELODE_MAKERS} <${MARVELODE_CONTACT}>  \\2\n\n"
        text "${text}")
    string(REGEX MATCHALL "> *[0-9]+-[0-9]+-[0-9]+\n" days "${text}")
    foreach(day IN LISTS days)
        string(REGEX MATCH "[0-9-]+" date "${day}")
        written_out(long_date ${date})
        string(REPLACE ">  ${date}\n" ">  ${long_date}\n" text "${text}")
    endforeach()
    string(REGEX REPLACE "\n+$" "\n" text "${text}")
    set(${result} "${text}" PARENT_SCOPE)
endfunction()

function(news_as_releases result news)
    entries_of(text "${news}")
    string(REGEX REPLACE "\n    ([^ ])" " \\1" text "${text}")
    string(REPLACE "&" "&amp;" text "${text}")
    string(REPLACE "<" "&lt;" text "${text}")
    string(REGEX REPLACE "${news_entry}"
        "    <release version=\"\\1\" date=\"\\2\" urgency=\"medium\">
      <url type=\"details\">${MARVELODE_RELEASES}/\\1</url>
      <description>\n        <ul>\n\\3        </ul>\n      </description>\n    </release>\n" text "${text}")
    string(REGEX REPLACE "\n  \\* ([^\n]+)" "\n          <li>\\1</li>" text "${text}")
    if(text MATCHES "(^|\n)([^ \n][^\n]*)")
        message(FATAL_ERROR "NEWS has something that is neither a version with its day nor a change: ${CMAKE_MATCH_2}")
    endif()
    set(${result} "${text}" PARENT_SCOPE)
endfunction()
