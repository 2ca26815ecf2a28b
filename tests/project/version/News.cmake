# What becomes of the news: the changelog for Debian and the releases for software centres.
include(${FOLDER}/cmake/Addresses.cmake)
include(${FOLDER}/cmake/News.cmake)

if(BROKEN)
    news_as_releases(releases "What is new\n\n1.0.0, today\n\n  * The first version.\n")
    return()
endif()

function(expect text)
    foreach(line IN LISTS ARGN)
        string(FIND "${text}" "${line}" position)
        if(position EQUAL -1)
            message(SEND_ERROR "without the words <${line}>:\n${text}")
        endif()
    endforeach()
endfunction()

set(news "What is new

1.10.0 (2028-02-29)

  * A change [of <some> things] & more, which
    takes two lines.
  * Another.

1.0.0 (2026-11-21)

  * The first version.
")

news_as_changelog(changelog "${news}")
expect("${changelog}"
    "marvelode-timer (1.10.0) unstable; urgency=medium\n\n  * A change [of <some> things] & more, which\n    takes two lines.\n"
    "  * Another.\n\n -- The Marvelode makers <makers@marvelode.example>  Tue, 29 Feb 2028 12:00:00 +0000\n\nmarvelode-timer (1.0.0)"
    "  Sat, 21 Nov 2026 12:00:00 +0000\n")

news_as_releases(releases "${news}")
expect("${releases}"
    "<release version=\"1.10.0\" date=\"2028-02-29\""
    "<li>A change [of &lt;some> things] &amp; more, which takes two lines.</li>"
    "<li>Another.</li>\n        </ul>\n      </description>\n    </release>\n    <release version=\"1.0.0\" date=\"2026-11-21\""
    "<li>The first version.</li>")
