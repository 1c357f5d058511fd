// Another program beside the one under test: opens a library, sets a metadata text and saves it in place.

#include "component/AtlavexLibrary.h"

#include <exception>
#include <iostream>

int main(int count, char** arguments) {
    if (count != 4)
        return 2;
    try {
        const auto library = CreateAtlavexLibrary();
        library->LoadFromFile(arguments[1], arguments[2]);
        library->GetMap(library->MapIdAt(1))->SetMetadata("by", arguments[3]);
        library->SaveToFile(arguments[1], arguments[2]);
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
    return 0;
}
