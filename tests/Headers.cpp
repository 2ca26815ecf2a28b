// Nothing by itself: with it are compiled the headers that the tests share.
