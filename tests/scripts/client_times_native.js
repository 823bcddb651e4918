// home: native
// The times as numbers of 64 bits and as dates, which JScript under Wine reads neither of.
function attempt(name, action) {
  var line;
  try {
    var value = action();
    line = typeof value + ' ' + value;
  } catch (error) {
    line = 'error ' + (error.number < 0 ? error.number + 4294967296 : error.number).toString(16);
  }
  WScript.Echo(name + ': ' + line);
}
function figures(date) {
  return date.getFullYear() + '-' + (date.getMonth() + 1) + '-' + date.getDate() + ' ' + date.getHours() + ':' +
      date.getMinutes() + ':' + date.getSeconds();
}

var client = new ActiveXObject('Velandoc.Client');
var site = 'http://docs.example.test/sites/a/Shared Documents/';
var names = ['b.xlsx', 'Unchanged.xlsx', 'Plans/Budget 2026.xlsx', 'Plans/New plan.docx', 'Minutes.docx'];
for (var i = 0; i < names.length; ++i) {
  WScript.Echo('-- ' + names[i]);
  attempt('InitFromURL', function () { return client.InitFromURL(site + names[i]); });
  attempt('TimeLastModified', function () { return client.TimeLastModified; });
  attempt('ModifiedTimeUTCOA', function () { return client.ModifiedTimeUTCOA; });
  attempt('CheckOutTime', function () { return client.CheckOutTime; });
  attempt('vti_timelastmodified', function () { return figures(client.FrontPageMetaInfo('vti_timelastmodified')); });
}
WScript.Echo('end of client_times_native');
WScript.Quit(0);
