#pragma once

// An object that is built in its place and never destroyed, for what must outlive everything else in the
// process: threads and other objects may use it while the process ends. It takes no memory from the
// allocator, so that its first use cannot fail for want of any.
//
// With a constant initialiser (constinit), it is there before any code runs.
template <typename T>
union Lasting {
    constexpr Lasting() : value() {}
    ~Lasting() {}
    Lasting(const Lasting&) = delete;
    Lasting& operator=(const Lasting&) = delete;

    T value;
};
