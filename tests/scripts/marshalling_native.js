// component: echo
// home: native
// What only the native script host can show: JScript under Wine reads neither 64-bit integers nor dates, errors as
// values and objects without members, and cannot pass a date.
function attempt(name, action) {
  var line;
  try {
    var value = action();
    line = (value === null ? 'null' : typeof value) + ' ' + value;
  } catch (error) {
    line = 'error ' + error.number + ' [' + error.message + '] ' + (error instanceof TypeError);
  }
  WScript.Echo(name + ': ' + line);
}

function figures(date) {
  return date.getFullYear() + '-' + (date.getMonth() + 1) + '-' + date.getDate() + ' ' + date.getHours() + ':' +
      date.getMinutes() + ':' + date.getSeconds() + '.' + date.getMilliseconds();
}

var echo = new ActiveXObject('VelandocTest.Echo');

var numbers = ['i1', 'i8', 'i8exact', 'i8large', 'i8least', 'ui8', 'ui8most', 'cy', 'error', 'leftOut', 'nullUnknown'];
for (var i = 0; i < numbers.length; ++i) {
  attempt('sample ' + numbers[i], function () { return echo.Sample(numbers[i]); });
}

var dates = ['date', 'earlyDate', 'firstDate', 'secondsDate'];
for (var j = 0; j < dates.length; ++j) {
  attempt('sample ' + dates[j], function () { return figures(echo.Sample(dates[j])); });
  attempt('back again', function () { return echo.Describe(echo.Sample(dates[j])); });
}
attempt('a date is a Date', function () { return echo.Sample('date') instanceof Date; });
attempt('a date of the script', function () { return echo.Describe(new Date(2009, 6, 6, 18, 0, 0)); });
attempt('a date before 1900', function () { return echo.Describe(new Date(1899, 11, 29, 6, 0, 0)); });
attempt('a date that is none', function () { return echo.Describe(new Date(NaN)); });

attempt('an opaque object passed on', function () { return echo.IsItself(echo.Sample('unknown')); });
attempt('an opaque object as an argument', function () { return echo.Describe(echo.Sample('unknown')); });
attempt('a member of an opaque object', function () { return echo.Sample('unknown').Text; });
attempt('held object', function () { echo.Held = echo.Child; return echo.HowPut; });
attempt('held object used', function () { echo.Held.Text = 'inside'; return echo.Held.Text; });
attempt('held nothing', function () { echo.Held = null; return echo.Held; });

attempt('negative zero', function () { return echo.Describe(-0); });
attempt('no number', function () { return echo.Describe(NaN); });
attempt('a plain object', function () { return echo.Describe({}); });
attempt('an array', function () { return echo.Describe([1, 2]); });
attempt('a function', function () { return echo.Describe(function () {}); });

attempt('a method as a value', function () { var method = echo.Describe; return method(1, 2); });
attempt('a method outlives its object', function () {
  var method = new ActiveXObject('VelandocTest.Echo').Optional;
  return method('still here');
});
attempt('delete', function () { return delete echo.Text; });
attempt('for-in', function () { var names = ''; for (var name in echo) names += name; return '[' + names + ']'; });

attempt('objects alive', function () { return echo.LiveObjects; });
attempt('a hundred objects come and go', function () {
  for (var k = 0; k < 100; ++k) new ActiveXObject('VelandocTest.Echo').Child.Text = 'x';
  return echo.LiveObjects;
});
attempt('a cycle through a held object', function () {
  var child = echo.Child;
  child.Held = 1;
  child = null;
  return echo.LiveObjects;
});
WScript.Echo('end of marshalling_native');
WScript.Quit(0);
