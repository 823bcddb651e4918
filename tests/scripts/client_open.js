// rules: [{"match": {"host": "nouser.example.test", "path": "/_vti_bin/usergroup.asmx"}, "do": {"status": 404}}, {"match": {"host": "noweb.example.test", "path": "/_vti_bin/shtml.dll/_vti_rpc"}, "do": {"status": 404}}]
// A document opened by its URL and by a path: every property, every question, both ways of failing, and what a second
// open and a failed one leave.
function visible(text) {
  var shown = '';
  for (var i = 0; i < text.length; ++i) {
    var unit = text.charCodeAt(i);
    shown += unit >= 32 && unit < 127 ? text.charAt(i) : '\\u' + ('000' + unit.toString(16)).slice(-4);
  }
  return shown;
}
function attempt(name, action) {
  var line;
  try {
    line = String(action());
  } catch (error) {
    line = 'error ' + (error.number < 0 ? error.number + 4294967296 : error.number).toString(16);
  }
  WScript.Echo(name + ': ' + visible(line));
}

var client = new ActiveXObject('Velandoc.Client');
var site = 'http://docs.example.test/sites/a/Shared Documents/';

function show(title) {
  WScript.Echo('-- ' + title);
  attempt('URL', function () { return client.URL; });
  attempt('WebURL', function () { return client.WebURL; });
  attempt('ListID', function () { return client.ListID; });
  attempt('ContentTypeID', function () { return client.ContentTypeID; });
  attempt('DocID', function () { return client.DocID; });
  attempt('SharePointCheckoutUser', function () { return client.SharePointCheckoutUser; });
  attempt('GetCheckOutStatus', function () { return client.GetCheckOutStatus(); });
  attempt('ModifiedSinceCheckOut', function () { return client.ModifiedSinceCheckOut; });
  attempt('IsInitialCreation', function () { return client.IsInitialCreation(); });
  attempt('ShouldAskForCheckIn', function () { return client.ShouldAskForCheckIn(); });
  attempt('ModifiedTimeUTCOA', function () { return Math.round(client.ModifiedTimeUTCOA * 86400) + ' seconds'; });
  attempt('HasFields', function () { return client.HasFields(); });
  attempt('HasUnfilledFields', function () { return client.HasUnfilledFields(); });
  attempt('HasUnfilledRequiredFields', function () { return client.HasUnfilledRequiredFields(); });
}

function meta(key) {
  attempt('FrontPageMetaInfo ' + key, function () {
    var value = client.FrontPageMetaInfo(key);
    return value === undefined ? 'undefined' : value;
  });
}

show('before any open');
meta('vti_etag');
attempt('a path that is none', function () { return client.InitFromUNC('C:\\b.xlsx'); });
attempt('an empty path', function () { return client.InitFromUNC(''); });

attempt('InitFromURL', function () { return client.InitFromURL(site + 'b.xlsx'); });
show('b.xlsx');
meta('vti_etag');
meta('no such key');
meta('VTI_ETAG');
meta('');

attempt('a path that is none', function () { return client.InitFromUNC('C:\\b.xlsx'); });
attempt('still open', function () { return client.DocID; });
attempt('InitFromUNC', function () {
  return client.InitFromUNC('\\\\docs.example.test\\sites\\a\\Shared Documents\\Plans\\Budget 2026.xlsx');
});
show('Plans/Budget 2026.xlsx, by a path');

attempt('names beyond ASCII', function () { return client.InitFromURL(site + 'R\u00e9sum\u00e9.docx'); });
show('R\u00e9sum\u00e9.docx'.replace(/\u00e9/g, 'e'));

attempt('a document without a library', function () {
  return client.InitFromURL('http://docs.example.test/sites/a/Charter.docx');
});
show('Charter.docx');
attempt('in the root web', function () {
  return client.InitFromURL('http://docs.example.test/Shared Documents/Welcome.docx');
});
show('Welcome.docx');
attempt('a document that is not there', function () { return client.InitFromURL(site + 'none.xlsx'); });
show('none.xlsx');
attempt('no web', function () { return client.InitFromURL('http://noweb.example.test/sites/a/b.xlsx'); });
show('a server without the service for webs');

attempt('InitFromURL', function () { return client.InitFromURL(site + 'b.xlsx'); });
attempt('open again', function () { return client.DocID; });
attempt('no user', function () { return client.InitFromURL('http://nouser.example.test/sites/a/b.xlsx'); });
show('a server that does not tell the user');
attempt('no scheme', function () { return client.InitFromURL('docs.example.test/b.xlsx'); });
attempt('its URL', function () { return client.URL; });
attempt('null', function () { return client.InitFromURL(null); });
attempt('too few arguments', function () { return client.InitFromURL(); });
WScript.Echo('end of client_open');
WScript.Quit(0);
