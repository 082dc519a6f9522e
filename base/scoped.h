#pragma once

// A word that has a value for the length of a scope, and the value of its type's default afterwards.
template <typename Word, typename Value>
class ScopedValue {
public:
    ScopedValue(Word& itsWord, Value value) : word(itsWord) { word = value; }
    ~ScopedValue() { word = Value{}; }
    ScopedValue(const ScopedValue&) = delete;
    ScopedValue& operator=(const ScopedValue&) = delete;

private:
    Word& word;
};

// Counts one more for the length of a scope. An atomic count keeps its total order.
template <typename Count>
class ScopedCount {
public:
    explicit ScopedCount(Count& itsCount) : count(itsCount) { ++count; }
    ~ScopedCount() { --count; }
    ScopedCount(const ScopedCount&) = delete;
    ScopedCount& operator=(const ScopedCount&) = delete;

private:
    Count& count;
};
