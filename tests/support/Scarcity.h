#pragma once

namespace fieldcore::testing {

/// Refuses memory (operator new throws std::bad_alloc) or threads, the n-th time that one is asked
/// for. It counts for the thread that made it and for those that are started while it lives, but
/// not what is spared. One at a time.
class Scarcity
{
public:
    enum class Of
    {
        Memory,
        Threads
    };
    /// @param n     which one is refused, from 1; 0: none
    /// @param once  false: all later ones, too
    Scarcity(Of what, int n, bool once);
    ~Scarcity();
    Scarcity(const Scarcity&) = delete;
    Scarcity& operator=(const Scarcity&) = delete;

    /// How often one was asked for.
    [[nodiscard]] int Count() const;
};

/// As long as it lives, its thread gets what it asks for, and so do the threads that it starts:
/// they are not what is tested.
class Spared
{
public:
    Spared() { ++t_depth; }
    ~Spared() { --t_depth; }
    Spared(const Spared&) = delete;
    Spared& operator=(const Spared&) = delete;

    [[nodiscard]] static bool IsThisThread() { return t_depth > 0; }

private:
    inline static thread_local int t_depth = 0;
};

/// Blocks of memory that the program holds, whoever asked for them.
[[nodiscard]] long long BlocksHeld();

} // namespace fieldcore::testing
