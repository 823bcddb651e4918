// home: native
// rules: [{"match": {"operation": "getDocsMetaInfo"}, "do": {"respond": {"status": 200, "body": "<html><head><title>vermeer RPC packet</title></head>\n<body>\n<p>method=getDocsMetaInfo:12.0.0.6665\n<p>document_list=\n<ul>\n<ul>\n<li>document_name=b.xlsx\n<li>meta_info=\n<ul>\n<li>vti_etag\n<li>SX|&#123;5D1F0E3A-6B2C-4A7D-8E90-1F2A3B4C5D6E&#125;,5\n<li>vti_timelastmodified\n<li>Tomorrow\n<li>vti_sourcecontroltimecheckedout\n<li>Today\n</ul>\n</ul>\n</ul>\n</body>\n</html>\n"}}}]
// A time that is no date and has no blank leaves the members that read it as an exception of C++. The native script host
// makes an error of it; cscript does not get past it.
function attempt(name, action) {
  var line;
  try {
    line = String(action());
  } catch (error) {
    line = 'error ' + (error.number + 4294967296).toString(16) + ' ' + error.message;
  }
  WScript.Echo(name + ': ' + line);
}

var client = new ActiveXObject('Velandoc.Client');
attempt('InitFromURL', function () {
  return client.InitFromURL('http://docs.example.test/sites/a/Shared Documents/b.xlsx');
});
attempt('TimeLastModified', function () { return client.TimeLastModified; });
attempt('ModifiedTimeUTCOA', function () { return client.ModifiedTimeUTCOA; });
attempt('CheckOutTime', function () { return client.CheckOutTime; });
attempt('ModifiedSinceCheckOut', function () { return client.ModifiedSinceCheckOut; });
attempt('IsInitialCreation', function () { return client.IsInitialCreation(); });
attempt('FrontPageMetaInfo', function () { return client.FrontPageMetaInfo('vti_timelastmodified'); });
attempt('DocID', function () { return client.DocID; });
WScript.Echo('end of client_exceptions_native');
WScript.Quit(0);
