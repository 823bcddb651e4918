// args: http://docs.example.test/ https://docs.example.test/sites/a/x.docx http://plain.example.test/
// rules: [{"match": {"host": "plain.example.test"}, "do": {"status": 404}}]
// exit: 1
// The probe as a user's script: what each URL's server is.
function attempt(action) {
  try {
    return action();
  } catch (error) {
    return 'error ' + error.number + ' ' + error.message;
  }
}

var check = new ActiveXObject('Velandoc.ServerCheck');
var allAre = true;
for (var i = 0; i < WScript.Arguments.length; ++i) {
  var url = WScript.Arguments(i);
  var is = attempt(function () { return check.Check(url); });
  allAre = allAre && is === true;
  WScript.Echo(url + ': ' + (is === true ? 'SharePoint server' : is === false ? 'no SharePoint server' : is));
}
WScript.Echo('end of probe_basic');
WScript.Quit(allAre ? 0 : 1);
