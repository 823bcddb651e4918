// component: echo
// Values on their way between a script and an object, in both directions.
function shown(value) {
  var type = value === null ? 'null' : typeof value;
  if (type !== 'string') return type + ' ' + String(value);
  var text = '';
  for (var i = 0; i < value.length; ++i) {
    var unit = value.charCodeAt(i);
    text += unit >= 32 && unit < 127 ? value.charAt(i) : '\\u' + ('000' + unit.toString(16)).slice(-4);
  }
  return "string '" + text + "'";
}

function attempt(name, action) {
  var line;
  try {
    line = shown(action());
  } catch (error) {
    line = 'error ' + error.number + ' ' + shown(error.message) + ' ' + shown(error.description);
  }
  WScript.Echo(name + ': ' + line);
}

var echo = new ActiveXObject('VelandocTest.Echo');

// The types that scripts of both homes can read; those that only one can are in marshalling_native.js.
var samples = ['empty', 'null', 'true', 'false', 'oddTrue', 'ui1', 'i2', 'i4', 'ui4', 'int', 'r4', 'r8', 'text',
               'emptyText', 'nullText', 'nulText', 'pairText', 'loneText', 'swappedText', 'latinText', 'nullDispatch'];
for (var i = 0; i < samples.length; ++i) {
  attempt('sample ' + samples[i], function () { return echo.Sample(samples[i]); });
}
attempt('sample unknown name', function () { return echo.Sample('nothing'); });

attempt('no argument', function () { return echo.Describe(); });
attempt('undefined and null', function () { return echo.Describe(undefined, null); });
attempt('booleans', function () { return echo.Describe(true, false); });
attempt('whole numbers', function () {
  return echo.Describe(0, -1, 2147483647, -2147483648, 2147483648, -2147483649, 4294967296);
});
attempt('fractions', function () { return echo.Describe(0.5, -0.25, 1e300); });
attempt('no number', function () { return echo.Describe(1 / 0, -1 / 0); });
attempt('texts', function () { return echo.Describe('', 'a', 'a\0b', '\u00e9', '\ud83d\ude00', 'x\ud83d', '\ude00\ud83d'); });
attempt('object', function () { return echo.Describe(echo, echo.Child); });
attempt('order', function () { return echo.Describe(1, 'two', 3.5, null, true); });

attempt('text at first', function () { return echo.Text; });
attempt('text set', function () { echo.Text = 'abc'; return echo.Text; });
attempt('text in another case', function () { echo.TEXT = 'def'; return echo.tExT; });
attempt('text of another type', function () { echo.Text = 5; return echo.Text; });
attempt('read only', function () { echo.ReadOnly = 'x'; return echo.ReadOnly; });
attempt('item with a text', function () { return echo.Item('key'); });
attempt('item with a number', function () { return echo.Item(7); });
attempt('optional, one', function () { return echo.Optional(1); });
attempt('optional, two', function () { return echo.Optional(1, 'b'); });
attempt('optional, three', function () { return echo.Optional(1, 'b', null); });
attempt('optional, none', function () { return echo.Optional(); });
attempt('optional, four', function () { return echo.Optional(1, 2, 3, 4); });

attempt('held value', function () { echo.Held = 12; return echo.Held + ' ' + echo.HowPut; });
attempt('held text', function () { echo.Held = 'twelve'; return echo.Held + ' ' + echo.HowPut; });
attempt('held null', function () { echo.Held = null; return echo.Held; });
attempt('child of a child', function () { var child = echo.Child; child.Text = 'c'; return child.Text + echo.Text; });
attempt('a method called by name', function () { return echo['describe']('x'); });

attempt('rich error', function () { echo.Fail(-2147220991, 'the words of the error'); });
attempt('rich error in Latin letters', function () { echo.Fail(-2147024891, 'caf\u00e9 \u20ac'); });
attempt('rich error without words', function () { echo.Fail(-2147024891, ''); });
attempt('rich error with a success code', function () { echo.Fail(5, 'odd'); });
attempt('deferred error', function () { echo.Fail(-2147220990, 'filled in later', 'deferred'); });
attempt('plain E_FAIL', function () { echo.Fail(-2147467259, '', 'plain'); });
attempt('plain E_ACCESSDENIED', function () { echo.Fail(-2147024891, '', 'plain'); });
attempt('plain E_NOTIMPL', function () { echo.Fail(-2147467263, '', 'plain'); });
attempt('plain DISP_E_TYPEMISMATCH', function () { echo.Fail(-2147352571, '', 'plain'); });
attempt('an error is an Error', function () {
  try { echo.Fail(-2147220991, 'words'); } catch (error) { return error instanceof Error && error.name; }
});
attempt('thrown on', function () {
  try { echo.Fail(-2147220991, 'words'); } catch (error) { throw error; }
});

attempt('unknown member read', function () { return echo.NoSuchMember; });
attempt('unknown member called', function () { return echo.NoSuchMember(1); });
attempt('unknown member set', function () { echo.NoSuchMember = 1; });
attempt('in', function () { return ('Text' in echo) + ' ' + ('text' in echo) + ' ' + ('NoSuchMember' in echo); });
attempt('default value as text', function () { return String(echo) + ('' + echo); });
attempt('typeof', function () { return typeof echo; });

WScript.Echo('end of marshalling');
WScript.Quit(0);
