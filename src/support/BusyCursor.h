#pragma once

// Shows the busy pointer for its lifetime, so that every ending path restores it.
class BusyCursor {
public:
    BusyCursor();
    ~BusyCursor();
    BusyCursor(const BusyCursor&) = delete;
    BusyCursor& operator=(const BusyCursor&) = delete;

private:
    bool active_ = false;
};
