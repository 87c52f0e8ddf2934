/* Asked for by the C++ headers; nothing of it is used. */
#pragma once
#define EOF (-1)
