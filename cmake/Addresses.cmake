# Every address that the program, its packages and its documents give. They are in a domain that is reserved for
# examples until the project has a home; then they change here. What is read without a build repeats some of them, and
# a test compares.
set(MARVELODE_MAKERS "The Marvelode makers")
set(MARVELODE_CONTACT makers@marvelode.example)
set(MARVELODE_HOMEPAGE https://marvelode.example)
set(MARVELODE_SUPPORT ${MARVELODE_HOMEPAGE}/support)
set(MARVELODE_BUGS ${MARVELODE_HOMEPAGE}/bugs)
set(MARVELODE_SOURCE ${MARVELODE_HOMEPAGE}/source)
set(MARVELODE_RELEASES ${MARVELODE_HOMEPAGE}/releases)
set(MARVELODE_PICTURES ${MARVELODE_HOMEPAGE}/pictures)
set(MARVELODE_LICENCE https://opensource.org/license/mit)
