// The global types of macOS' header of this name that the adapters use or could be confused with.
#pragma once

typedef unsigned char Boolean;
typedef signed int SInt32;
typedef unsigned char Style;
typedef char* Ptr;
typedef unsigned long Size;
struct Point {
    short v, h;
};
struct Rect {
    short top, left, bottom, right;
};
