// exit: 5
// What a script can do wrong with the component, and what it then catches.
function attempt(name, action) {
  var line;
  try {
    var value = action();
    line = typeof value + ' ' + value;
  } catch (error) {
    line = 'error ' + error.number + ' [' + error.message + '] [' + error.description + '] ' + (error instanceof Error);
  }
  WScript.Echo(name + ': ' + line);
}

attempt('unknown class', function () { return new ActiveXObject('Velandoc.NoSuchClass'); });
attempt('empty class name', function () { return new ActiveXObject(''); });
attempt('unknown class from WScript', function () { return WScript.CreateObject('Velandoc.NoSuchClass'); });
attempt('name in another case', function () { return typeof new ActiveXObject('velandoc.SERVERCHECK'); });
attempt('name with version', function () { return typeof new ActiveXObject('Velandoc.ServerCheck.1'); });
attempt('from WScript', function () { return typeof WScript.CreateObject('Velandoc.ServerCheck'); });

var check = new ActiveXObject('Velandoc.ServerCheck');
attempt('unknown member read', function () { return check.NoSuchMember; });
attempt('unknown member called', function () { return check.NoSuchMember('x'); });
attempt('unknown member set', function () { check.NoSuchMember = 'x'; });
attempt('method set', function () { check.Check = 'x'; });
attempt('too few arguments', function () { return check.Check(); });
attempt('too many arguments', function () { return check.Check('http://docs.example.test/', 1, 2); });
attempt('an object for a text', function () { return check.Check(check); });
attempt('argument out of range', function () { return WScript.Arguments(0); });
attempt('unknown member of WScript', function () { return WScript.NoSuchMember(); });
attempt('thrown by the script', function () { throw new Error(7, 'seven'); });
attempt('thrown without a number', function () { throw new Error('words'); });
attempt('a range error', function () { throw new RangeError('far'); });
WScript.Echo(WScript.ScriptName + ' ' + WScript.Arguments.length + ' ' + WScript.Arguments.Count());
WScript.Echo('a', 1, 0.5, true, false, null, undefined, 'z');
WScript.Echo('end of errors');
try {
  WScript.Quit(5);
} finally {
  WScript.Echo('nothing runs behind Quit');
}
