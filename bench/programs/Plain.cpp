// The plainest program that says something: the other side of the command line's start.

#include <iostream>

int main()
{
    std::cout << "plain 1.0\n";
    return std::cout ? 0 : 1;
}
