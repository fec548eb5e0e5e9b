// What the libraries export when they are built as shared libraries: everything the installed
// headers declare, and nothing else (the libraries are compiled with hidden visibility). Each
// public header brackets its declarations with ZENTROVA_API_BEGIN and ZENTROVA_API_END.
#pragma once

#define ZENTROVA_API_BEGIN _Pragma("GCC visibility push(default)")
#define ZENTROVA_API_END _Pragma("GCC visibility pop")
