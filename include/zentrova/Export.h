/// @file
/// What the libraries export when they are built as shared libraries: everything the installed
/// headers declare, and nothing else (the libraries are compiled with hidden visibility). Each
/// public header brackets its declarations with ZENTROVA_API_BEGIN and ZENTROVA_API_END.
#pragma once

/// Opens a region of exported declarations (default visibility).
#define ZENTROVA_API_BEGIN _Pragma("GCC visibility push(default)")
/// Closes the region ZENTROVA_API_BEGIN opened.
#define ZENTROVA_API_END _Pragma("GCC visibility pop")
