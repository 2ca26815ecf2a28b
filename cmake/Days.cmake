# The day of the calendar as a number: how many days after the first of January 1970 YEAR-MONTH-DAY is.
function(days_since_1970 result date)
    string(REGEX MATCH "^([0-9]+)-([0-9]+)-([0-9]+)$" _ "${date}")
    set(day ${CMAKE_MATCH_3})
    # years that begin in March, so that a leap day is their last
    math(EXPR month "(${CMAKE_MATCH_2} + 9) % 12")
    math(EXPR year "${CMAKE_MATCH_1} - ${month} / 10")
    math(EXPR days "365 * ${year} + ${year} / 4 - ${year} / 100 + ${year} / 400 + (153 * ${month} + 2) / 5 + ${day} - 719469")
    set(${result} ${days} PARENT_SCOPE)
endfunction()
