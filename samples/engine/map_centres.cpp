// Prints where the middle of each map of a library lies: longitude, latitude, name.
//
//     cmake -S . -B build && cmake --build build && build/map_centres FILE.Atlavex
//     c++ -std=c++20 map_centres.cpp $(pkg-config --cflags --libs atlavex) -o map_centres

#include "base/ComponentError.h"
#include "component/AtlavexLibrary.h"

#include <iostream>

int main(int argumentCount, char** arguments) {
    if (argumentCount != 2) {
        std::cerr << "Usage: map_centres FILE.Atlavex\n";
        return 2;
    }
    try {
        const auto library = CreateAtlavexLibrary();
        library->LoadFromFile(arguments[1], ""); // a sealed file needs its key
        for (std::int32_t position = 1; position <= library->MapCount(); ++position) {
            const auto map = library->GetMap(library->MapIdAt(position));
            if (!map->IsScaled())
                continue;
            const WorldPosition middle =
                map->PixelToWorld({(map->Width() - 1) / 2.0, (map->Height() - 1) / 2.0});
            const LonLat place = map->WorldToWgs84(middle);
            std::cout << place.longitude << ' ' << place.latitude << ' ' << map->Name() << '\n';
        }
    } catch (const ComponentError& error) {
        std::cerr << error.Description() << '\n';
        return 1;
    }
}
