// The code that an action throws, for tests of what must be refused. Any thread.
#ifndef QEL_TESTS_SUPPORT_THROWS_H
#define QEL_TESTS_SUPPORT_THROWS_H

namespace qel::test {

// What `action` throws; 0 when it returns.
template <class Action>
int thrownBy(Action action) {
    try {
        action();
    } catch (int code) {
        return code;
    }
    return 0;
}

}  // namespace qel::test

#endif
