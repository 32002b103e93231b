#pragma once

#include "common/report/indexerror.h"
#include "common/report/report.h"

namespace ZUNO::Common::Container {

/// Exactly N elements in place. An index out of range is reported, and then raises an
/// ArgumentOutOfRangeException.
template <typename T, unsigned int N>
class Array {
public:
    T& operator[](unsigned int index) {
        check(index);
        return mElements[index];
    }
    const T& operator[](unsigned int index) const {
        check(index);
        return mElements[index];
    }

    T* begin() { return mElements; }
    T* end() { return mElements + N; }

    T mElements[N]; ///< public so that the array can be made from a list in braces

private:
    static constexpr unsigned int N_NUM_ELEM = N;

    static void check(unsigned int index) {
        if (!ZUNO_CHECK(index < N_NUM_ELEM, "index out of range"))
            Exceptions::throwIndexError("index");
    }
};

} // namespace ZUNO::Common::Container
