// Every state of a check-out, and the operations that change it: what an object says is what its last open learnt.
function attempt(name, action) {
  var line;
  try {
    line = String(action());
  } catch (error) {
    line = 'error ' + (error.number < 0 ? error.number + 4294967296 : error.number).toString(16);
  }
  WScript.Echo(name + ': ' + line.replace(/\u00eb/g, 'e').replace(/\u00fc/g, 'u'));
}

var client = new ActiveXObject('Velandoc.Client');
var site = 'http://docs.example.test/sites/a/Shared Documents/';

function open(name) {
  WScript.Echo('-- ' + name);
  attempt('InitFromURL', function () { return client.InitFromURL(site + name); });
}
function state() {
  attempt('SharePointCheckoutUser', function () { return client.SharePointCheckoutUser; });
  attempt('GetCheckOutStatus', function () { return client.GetCheckOutStatus(); });
  attempt('ModifiedSinceCheckOut', function () { return client.ModifiedSinceCheckOut; });
  attempt('IsInitialCreation', function () { return client.IsInitialCreation(); });
  attempt('ShouldAskForCheckIn', function () { return client.ShouldAskForCheckIn(); });
}

WScript.Echo('-- nothing open');
attempt('CheckOut', function () { return client.CheckOut(); });
attempt('CheckIn', function () { return client.CheckIn('', 0); });
attempt('UndoCheckOut', function () { return client.UndoCheckOut(); });

var names = ['b.xlsx', 'Minutes.docx', 'Notes.docx', 'Unchanged.xlsx', 'Plans/Budget 2026.xlsx', 'Plans/New plan.docx',
             'Plans/Archive/Forecast 2009.xlsx'];
for (var i = 0; i < names.length; ++i) {
  open(names[i]);
  state();
}

open('b.xlsx');
attempt('CheckOut', function () { return client.CheckOut(); });
WScript.Echo('as at the open:');
state();
attempt('CheckOut again', function () { return client.CheckOut(); });
open('b.xlsx');
state();
attempt('CheckIn', function () { return client.CheckIn('what & <why>', 1); });
open('b.xlsx');
state();
attempt('CheckIn of what nobody holds', function () { return client.CheckIn('', 1); });
attempt('UndoCheckOut of what nobody holds', function () { return client.UndoCheckOut(); });

attempt('CheckOut', function () { return client.CheckOut(); });
attempt('UndoCheckOut', function () { return client.UndoCheckOut(); });
open('b.xlsx');
state();

open('Notes.docx');
attempt('CheckOut of what another holds', function () { return client.CheckOut(); });
attempt('CheckIn of what another holds', function () { return client.CheckIn('', 0); });
attempt('UndoCheckOut of what another holds', function () { return client.UndoCheckOut(); });
open('Notes.docx');
state();

open('Plans/Budget 2026.xlsx');
attempt('CheckIn with a type that is none', function () { return client.CheckIn('', 7); });
attempt('CheckIn with a text for a type', function () { return client.CheckIn('', 'x'); });
attempt('CheckIn without a type', function () { return client.CheckIn(''); });
attempt('CheckIn, a null comment', function () { return client.CheckIn(null, 0); });
open('Plans/Budget 2026.xlsx');
state();

open('none.xlsx');
attempt('CheckOut of what is not there', function () { return client.CheckOut(); });
attempt('UndoCheckOut of what is not there', function () { return client.UndoCheckOut(); });
WScript.Echo('end of client_check_out');
WScript.Quit(0);
