/* The check for a SharePoint server as a C program writes it that has libcurl and libxml2 alone. */
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

/* Posts to the web service `count` times, on one connection. Returns how many answers held the
   list collection. */
int PlainChecks(const char* url, int count);

#ifdef __cplusplus
}
#endif
