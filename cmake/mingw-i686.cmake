# Cross-build for 32-bit Windows.
set(qel_machine i686)
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)

# The compiler folds functions of equal code into one, and takes a member function, which clears its
# arguments off the stack itself, for equal to a free one, which leaves that to its caller: an empty
# virtual function and an empty callback in one source, and the stack is off by four bytes.
set(CMAKE_CXX_FLAGS_INIT "-fno-ipa-icf")
