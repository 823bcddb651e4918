/* Sends the bytes that ServerCheck.Check sends, parses the answer, and looks for one element by
   XPath. Takes each library's shortest way: one handle for all requests, whose options are set
   once, and no text but the answer's own. */
#include "bench/plain_check.h"

#include <curl/curl.h>
#include <libxml/parser.h>
#include <libxml/xpath.h>
#include <libxml/xpathInternals.h>
#include <stdlib.h>
#include <string.h>

static const char kEnvelope[] =
    "<soap:Envelope xmlns:soap=\"http://schemas.xmlsoap.org/soap/envelope/\"><soap:Body>"
    "<GetListCollection xmlns=\"http://schemas.microsoft.com/sharepoint/soap/\"/>"
    "</soap:Body></soap:Envelope>\r\n";

struct Answer {
  char* bytes;
  size_t size;
  size_t capacity;
};

static size_t Keep(char* data, size_t size, size_t count, void* target) {
  struct Answer* answer = target;
  const size_t length = size * count;
  if (answer->size + length > answer->capacity) {
    const size_t capacity = 2 * (answer->size + length);
    char* const longer = realloc(answer->bytes, capacity);
    if (longer == NULL) return 0;
    answer->bytes = longer;
    answer->capacity = capacity;
  }
  memcpy(answer->bytes + answer->size, data, length);
  answer->size += length;
  return length;
}

static int HoldsListCollection(const struct Answer* answer) {
  int found = 0;
  xmlDoc* const document =
      xmlReadMemory(answer->bytes, (int)answer->size, NULL, NULL, XML_PARSE_NONET);
  if (document == NULL) return 0;
  xmlXPathContext* const context = xmlXPathNewContext(document);
  if (context != NULL &&
      xmlXPathRegisterNs(context, BAD_CAST "resp",
                         BAD_CAST "http://schemas.microsoft.com/sharepoint/soap/") == 0) {
    xmlXPathObject* const result =
        xmlXPathEvalExpression(BAD_CAST "//resp:GetListCollectionResult", context);
    found = result != NULL && !xmlXPathNodeSetIsEmpty(result->nodesetval);
    xmlXPathFreeObject(result);
  }
  xmlXPathFreeContext(context);
  xmlFreeDoc(document);
  return found;
}

int PlainChecks(const char* url, int count) {
  static const char* const kHeaders[] = {
      "Accept: text/*", "Content-Type: text/xml; charset=utf-8",
      "SOAPAction: http://schemas.microsoft.com/sharepoint/soap/GetListCollection",
      "Connection: Keep-Alive"};
  struct curl_slist* headers = NULL;
  for (size_t i = 0; i < sizeof kHeaders / sizeof *kHeaders; ++i) {
    headers = curl_slist_append(headers, kHeaders[i]);
  }
  struct Answer answer = {NULL, 0, 0};
  CURL* const easy = curl_easy_init();
  curl_easy_setopt(easy, CURLOPT_URL, url);
  curl_easy_setopt(easy, CURLOPT_USERAGENT, "CWinInetConnection");
  curl_easy_setopt(easy, CURLOPT_HTTPHEADER, headers);
  curl_easy_setopt(easy, CURLOPT_POSTFIELDS, kEnvelope);
  curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, Keep);
  curl_easy_setopt(easy, CURLOPT_WRITEDATA, &answer);
  int found = 0;
  for (int i = 0; i < count; ++i) {
    long status = 0;
    answer.size = 0;
    if (curl_easy_perform(easy) != CURLE_OK) break;
    curl_easy_getinfo(easy, CURLINFO_RESPONSE_CODE, &status);
    if (status == 200 && HoldsListCollection(&answer)) ++found;
  }
  curl_easy_cleanup(easy);
  curl_slist_free_all(headers);
  free(answer.bytes);
  return found;
}
