// Empty: the headers that the tests share are compiled with it.
