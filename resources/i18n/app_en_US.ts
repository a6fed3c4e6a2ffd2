<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en_US" sourcelanguage="en_US">
<context>
    <name>BtListDlg</name>
    <message>
        <source>Bluetooth Devices</source>
        <translation>Bluetooth Devices</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>MAC</source>
        <translation>MAC</translation>
    </message>
    <message>
        <source>RSSI</source>
        <translation>RSSI</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>Bind</source>
        <translation>Bind</translation>
    </message>
    <message>
        <source>%1 dBm</source>
        <translation>%1 dBm</translation>
    </message>
    <message>
        <source>Scan failed</source>
        <translation>Scan failed</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Scanning... %1 s</source>
        <translation>Scanning... %1 s</translation>
    </message>
    <message>
        <source>No device found</source>
        <translation>No device found</translation>
    </message>
    <message>
        <source>Choose the printer</source>
        <translation>Choose the printer</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Stop</translation>
    </message>
    <message>
        <source>Scan Again</source>
        <translation>Scan Again</translation>
    </message>
</context>
<context>
    <name>GData</name>
    <message>
        <source>No response from the analysis server.</source>
        <translation>No response from the analysis server.</translation>
    </message>
    <message>
        <source>The analysis server&apos;s answer could not be read.</source>
        <translation>The analysis server&apos;s answer could not be read.</translation>
    </message>
    <message>
        <source>The mail security setting &quot;%1&quot; is not none, starttls or tls</source>
        <translation>The mail security setting &quot;%1&quot; is not none, starttls or tls</translation>
    </message>
    <message>
        <source>There is no report to send</source>
        <translation>There is no report to send</translation>
    </message>
    <message>
        <source>The report %1 cannot be read</source>
        <translation>The report %1 cannot be read</translation>
    </message>
    <message>
        <source>Vision screening records</source>
        <translation>Vision screening records</translation>
    </message>
    <message>
        <source>Pass</source>
        <translation>Pass</translation>
    </message>
    <message>
        <source>Refer</source>
        <translation>Refer</translation>
    </message>
    <message>
        <source>No result</source>
        <translation>No result</translation>
    </message>
    <message>
        <source>Vision screening of %1: %2</source>
        <translation>Vision screening of %1: %2</translation>
    </message>
    <message>
        <source>Vision screening report</source>
        <translation>Vision screening report</translation>
    </message>
    <message>
        <source>Name: %1</source>
        <translation>Name: %1</translation>
    </message>
    <message>
        <source>Sex: %1</source>
        <translation>Sex: %1</translation>
    </message>
    <message>
        <source>Male</source>
        <translation>Male</translation>
    </message>
    <message>
        <source>Female</source>
        <translation>Female</translation>
    </message>
    <message>
        <source>Birthday: %1</source>
        <translation>Birthday: %1</translation>
    </message>
    <message>
        <source>Test time: %1</source>
        <translation>Test time: %1</translation>
    </message>
    <message>
        <source>Right eye (OD): sphere %1, cylinder %2, axis %3</source>
        <translation>Right eye (OD): sphere %1, cylinder %2, axis %3</translation>
    </message>
    <message>
        <source>Left eye (OS): sphere %1, cylinder %2, axis %3</source>
        <translation>Left eye (OS): sphere %1, cylinder %2, axis %3</translation>
    </message>
    <message>
        <source>Pupil distance: %1</source>
        <translation>Pupil distance: %1</translation>
    </message>
    <message>
        <source>Result: %1</source>
        <translation>Result: %1</translation>
    </message>
    <message>
        <source>The recording of the test is attached.</source>
        <translation>The recording of the test is attached.</translation>
    </message>
    <message>
        <source>Test message from the vision screener</source>
        <translation>Test message from the vision screener</translation>
    </message>
    <message>
        <source>This message confirms that the screener can send its reports to this address.</source>
        <translation>This message confirms that the screener can send its reports to this address.</translation>
    </message>
    <message>
        <source>Open printer failed</source>
        <translation>Open printer failed</translation>
    </message>
    <message>
        <source>Printer init failed</source>
        <translation>Printer init failed</translation>
    </message>
    <message>
        <source>Orvella vision screener %1</source>
        <translation>Orvella vision screener %1</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Sex</source>
        <translation>Sex</translation>
    </message>
    <message>
        <source>Birthday</source>
        <translation>Birthday</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Time</translation>
    </message>
    <message>
        <source>OD SPH</source>
        <translation>OD SPH</translation>
    </message>
    <message>
        <source>OD CYL</source>
        <translation>OD CYL</translation>
    </message>
    <message>
        <source>OD AXIS</source>
        <translation>OD AXIS</translation>
    </message>
    <message>
        <source>OS SPH</source>
        <translation>OS SPH</translation>
    </message>
    <message>
        <source>OS CYL</source>
        <translation>OS CYL</translation>
    </message>
    <message>
        <source>OS AXIS</source>
        <translation>OS AXIS</translation>
    </message>
    <message>
        <source>PD</source>
        <translation>PD</translation>
    </message>
    <message>
        <source>Screening results</source>
        <translation>Screening results</translation>
    </message>
    <message>
        <source>The export could not be written to the USB drive %1</source>
        <translation>The export could not be written to the USB drive %1</translation>
    </message>
</context>
<context>
    <name>KeypadDlg</name>
    <message>
        <source>Del</source>
        <translation>Del</translation>
    </message>
    <message>
        <source>Enter</source>
        <translation>Enter</translation>
    </message>
    <message>
        <source>Shift</source>
        <translation>Shift</translation>
    </message>
    <message>
        <source>.?123</source>
        <translation>.?123</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Space</source>
        <translation>Space</translation>
    </message>
    <message>
        <source>abc</source>
        <translation>abc</translation>
    </message>
</context>
<context>
    <name>Mailer</name>
    <message>
        <source>The mail server %1 did not answer within %2 seconds</source>
        <translation>The mail server %1 did not answer within %2 seconds</translation>
    </message>
    <message>
        <source>No mail server is set</source>
        <translation>No mail server is set</translation>
    </message>
    <message>
        <source>The mail server %1 is not a valid address</source>
        <translation>The mail server %1 is not a valid address</translation>
    </message>
    <message>
        <source>The sender address &quot;%1&quot; is not valid</source>
        <translation>The sender address &quot;%1&quot; is not valid</translation>
    </message>
    <message>
        <source>No recipient address is set</source>
        <translation>No recipient address is set</translation>
    </message>
    <message>
        <source>The recipient address &quot;%1&quot; is not valid</source>
        <translation>The recipient address &quot;%1&quot; is not valid</translation>
    </message>
    <message>
        <source>The attachment %1 is missing</source>
        <translation>The attachment %1 is missing</translation>
    </message>
    <message>
        <source>The attachment %1 cannot be read</source>
        <translation>The attachment %1 cannot be read</translation>
    </message>
    <message>
        <source>The attachment %1 is empty</source>
        <translation>The attachment %1 is empty</translation>
    </message>
    <message>
        <source>The mailer cannot start</source>
        <translation>The mailer cannot start</translation>
    </message>
    <message>
        <source>The mail server %1 cannot be reached</source>
        <translation>The mail server %1 cannot be reached</translation>
    </message>
    <message>
        <source>The mail server %1 refused the user name or password</source>
        <translation>The mail server %1 refused the user name or password</translation>
    </message>
    <message>
        <source>The mail server %1 does not offer an encrypted connection</source>
        <translation>The mail server %1 does not offer an encrypted connection</translation>
    </message>
    <message>
        <source>The encrypted connection to the mail server %1 failed: %2</source>
        <translation>The encrypted connection to the mail server %1 failed: %2</translation>
    </message>
    <message>
        <source>The mail server refused the recipient: %1</source>
        <translation>The mail server refused the recipient: %1</translation>
    </message>
    <message>
        <source>The mail server refused mail from %1: %2</source>
        <translation>The mail server refused mail from %1: %2</translation>
    </message>
    <message>
        <source>The mail server %1 refused the login: %2</source>
        <translation>The mail server %1 refused the login: %2</translation>
    </message>
    <message>
        <source>The mail server %1 turned the device away: %2</source>
        <translation>The mail server %1 turned the device away: %2</translation>
    </message>
    <message>
        <source>The mail server refused the message: %1</source>
        <translation>The mail server refused the message: %1</translation>
    </message>
    <message>
        <source>Sending the mail to %1 failed: %2</source>
        <translation>Sending the mail to %1 failed: %2</translation>
    </message>
</context>
<context>
    <name>MainDialog</name>
    <message>
        <source>Error</source>
        <translation>Error</translation>
    </message>
    <message>
        <source>User Name cannot be empry!</source>
        <translation>User Name cannot be empry!</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Network is not ready!</source>
        <translation>Network is not ready!</translation>
    </message>
    <message>
        <source>Date is not valid!</source>
        <translation>Date is not valid!</translation>
    </message>
    <message>
        <source>Please enter your name</source>
        <translation>Please enter your name</translation>
    </message>
    <message>
        <source>Year-Month-Date</source>
        <translation>Year-Month-Date</translation>
    </message>
    <message>
        <source>Year</source>
        <translation>Year</translation>
    </message>
    <message>
        <source>Month</source>
        <translation>Month</translation>
    </message>
    <message>
        <source>Day</source>
        <translation>Day</translation>
    </message>
    <message>
        <source>Power Off</source>
        <translation>Power Off</translation>
    </message>
    <message>
        <source>Yes</source>
        <translation>Yes</translation>
    </message>
    <message>
        <source>No</source>
        <translation>No</translation>
    </message>
    <message>
        <source>Version Check Failed!</source>
        <translation>Version Check Failed!</translation>
    </message>
    <message>
        <source>No New Version!</source>
        <translation>No New Version!</translation>
    </message>
    <message>
        <source>System Update</source>
        <translation>System Update</translation>
    </message>
    <message>
        <source>System Update Failed!</source>
        <translation>System Update Failed!</translation>
    </message>
    <message>
        <source>System Update Success!</source>
        <translation>System Update Success!</translation>
    </message>
    <message>
        <source>Low Battery</source>
        <translation>Low Battery</translation>
    </message>
    <message>
        <source>20% battery remaining</source>
        <translation>20% battery remaining</translation>
    </message>
    <message>
        <source>Camera Open Failed!</source>
        <translation>Camera Open Failed!</translation>
    </message>
    <message>
        <source>%1 Minutes</source>
        <translation>%1 Minutes</translation>
    </message>
    <message>
        <source>Connect to Network</source>
        <translation>Connect to Network</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Delete</translation>
    </message>
    <message>
        <source>Connect</source>
        <translation>Connect</translation>
    </message>
    <message>
        <source>Connect Failed!</source>
        <translation>Connect Failed!</translation>
    </message>
    <message>
        <source>Delete Failed!</source>
        <translation>Delete Failed!</translation>
    </message>
    <message>
        <source>Connect to the unsafe network?</source>
        <translation>Connect to the unsafe network?</translation>
    </message>
    <message>
        <source>Version List File Download Failed!</source>
        <translation>Version List File Download Failed!</translation>
    </message>
    <message>
        <source>Wrong Password!</source>
        <translation>Wrong Password!</translation>
    </message>
    <message>
        <source>AUTO ON</source>
        <translation>AUTO ON</translation>
    </message>
    <message>
        <source>AUTO OFF</source>
        <translation>AUTO OFF</translation>
    </message>
    <message>
        <source>Please move the cross sign to the center</source>
        <translation>Please move the cross sign to the center</translation>
    </message>
    <message>
        <source>Please lower the ambient brightness to below 20</source>
        <translation>Please lower the ambient brightness to below 20</translation>
    </message>
    <message>
        <source>Vedio File Open Failed!</source>
        <translation>Vedio File Open Failed!</translation>
    </message>
    <message>
        <source>Message</source>
        <translation>Message</translation>
    </message>
    <message>
        <source>Data is processing,please wait...</source>
        <translation>Data is processing,please wait...</translation>
    </message>
    <message>
        <source>Waiting...</source>
        <translation>Waiting...</translation>
    </message>
    <message>
        <source>The pupil image has been sent to your email.</source>
        <translation>The pupil image has been sent to your email.</translation>
    </message>
    <message>
        <source>Data processing failed: %1</source>
        <translation>Data processing failed: %1</translation>
    </message>
    <message>
        <source>On</source>
        <translation>On</translation>
    </message>
    <message>
        <source>Off</source>
        <translation>Off</translation>
    </message>
    <message>
        <source>Please Input Email</source>
        <translation>Please Input Email</translation>
    </message>
    <message>
        <source>Invalid E-mail Address</source>
        <translation>Invalid E-mail Address</translation>
    </message>
    <message>
        <source>Mail is Sending, Please wait...</source>
        <translation>Mail is Sending, Please wait...</translation>
    </message>
    <message>
        <source>Success</source>
        <translation>Success</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Sex</source>
        <translation>Sex</translation>
    </message>
    <message>
        <source>Birthday</source>
        <translation>Birthday</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Time</translation>
    </message>
    <message>
        <source>OD SPH</source>
        <translation>OD SPH</translation>
    </message>
    <message>
        <source>OD CYL</source>
        <translation>OD CYL</translation>
    </message>
    <message>
        <source>OD AXIS</source>
        <translation>OD AXIS</translation>
    </message>
    <message>
        <source>OS SPH</source>
        <translation>OS SPH</translation>
    </message>
    <message>
        <source>OS CYL</source>
        <translation>OS CYL</translation>
    </message>
    <message>
        <source>OS AXIS</source>
        <translation>OS AXIS</translation>
    </message>
    <message>
        <source>PD</source>
        <translation>PD</translation>
    </message>
    <message>
        <source>Result</source>
        <translation>Result</translation>
    </message>
    <message>
        <source>Male</source>
        <translation>Male</translation>
    </message>
    <message>
        <source>Female</source>
        <translation>Female</translation>
    </message>
    <message>
        <source>No Record Selected</source>
        <translation>No Record Selected</translation>
    </message>
    <message>
        <source>Delete Records</source>
        <translation>Delete Records</translation>
    </message>
    <message>
        <source>Open File Error</source>
        <translation>Open File Error</translation>
    </message>
    <message>
        <source>Pass</source>
        <translation>Pass</translation>
    </message>
    <message>
        <source>Refer</source>
        <translation>Refer</translation>
    </message>
    <message>
        <source>The camera is getting ready, please wait...</source>
        <translation>The camera is getting ready, please wait...</translation>
    </message>
    <message>
        <source>The camera is not ready yet, please try again.</source>
        <translation>The camera is not ready yet, please try again.</translation>
    </message>
    <message>
        <source>No report was sent: set the e-mail address on the E-mail Reports page.</source>
        <translation>No report was sent: set the e-mail address on the E-mail Reports page.</translation>
    </message>
    <message>
        <source>Unknown</source>
        <translation>Unknown</translation>
    </message>
    <message>
        <source>%1: %2 to %3</source>
        <translation>%1: %2 to %3</translation>
    </message>
    <message>
        <source>Value Out of Range</source>
        <translation>Value Out of Range</translation>
    </message>
    <message>
        <source>%1 must be a whole number from %2 to %3.</source>
        <translation>%1 must be a whole number from %2 to %3.</translation>
    </message>
    <message>
        <source>None</source>
        <translation>None</translation>
    </message>
    <message>
        <source>Invalid Device ID</source>
        <translation>Invalid Device ID</translation>
    </message>
    <message>
        <source>A device ID cannot contain &quot;|&quot;.</source>
        <translation>A device ID cannot contain &quot;|&quot;.</translation>
    </message>
    <message>
        <source>Factory Reset</source>
        <translation>Factory Reset</translation>
    </message>
    <message>
        <source>All settings return to their factory values and the device restarts. The test history is kept.</source>
        <translation>All settings return to their factory values and the device restarts. The test history is kept.</translation>
    </message>
    <message>
        <source>The device restarts now.</source>
        <translation>The device restarts now.</translation>
    </message>
    <message>
        <source>Printed</source>
        <translation>Printed</translation>
    </message>
    <message>
        <source>No printer is set</source>
        <translation>No printer is set</translation>
    </message>
    <message>
        <source>Printer bound: %1</source>
        <translation>Printer bound: %1</translation>
    </message>
    <message>
        <source>Phone setup could not start!</source>
        <translation>Phone setup could not start!</translation>
    </message>
    <message>
        <source>Stop setup</source>
        <translation>Stop setup</translation>
    </message>
    <message>
        <source>Phone setup</source>
        <translation>Phone setup</translation>
    </message>
    <message>
        <source>PIN %1, %2 left</source>
        <translation>PIN %1, %2 left</translation>
    </message>
    <message>
        <source>Phone setup closed: too many wrong PINs</source>
        <translation>Phone setup closed: too many wrong PINs</translation>
    </message>
    <message>
        <source>Phone setup closed: time is up</source>
        <translation>Phone setup closed: time is up</translation>
    </message>
    <message>
        <source>Network %1 added by provisioning</source>
        <translation>Network %1 added by provisioning</translation>
    </message>
    <message>
        <source>Provisioning could not add network %1</source>
        <translation>Provisioning could not add network %1</translation>
    </message>
    <message>
        <source>Network %1 chosen by provisioning</source>
        <translation>Network %1 chosen by provisioning</translation>
    </message>
    <message>
        <source>Provisioning could not choose network %1</source>
        <translation>Provisioning could not choose network %1</translation>
    </message>
    <message>
        <source>Network %1 forgotten by provisioning</source>
        <translation>Network %1 forgotten by provisioning</translation>
    </message>
    <message>
        <source>Provisioning could not forget network %1</source>
        <translation>Provisioning could not forget network %1</translation>
    </message>
    <message>
        <source>Also saved on the USB drive in %1</source>
        <translation>Also saved on the USB drive in %1</translation>
    </message>
    <message>
        <source>No pupil photo was kept for the test of %1.</source>
        <translation>No pupil photo was kept for the test of %1.</translation>
    </message>
    <message>
        <source>Pupil photo of the test of %1</source>
        <translation>Pupil photo of the test of %1</translation>
    </message>
    <message>
        <source>A name cannot contain &quot;,&quot; or &quot;|&quot;.</source>
        <translation>A name cannot contain &quot;,&quot; or &quot;|&quot;.</translation>
    </message>
    <message>
        <source>The history could not be read or written; nothing was deleted.</source>
        <translation>The history could not be read or written; nothing was deleted.</translation>
    </message>
    <message>
        <source>The settings file %1 cannot be read, so the referral criterion is unknown. Screening is off until the device is serviced.</source>
        <translation>The settings file %1 cannot be read, so the referral criterion is unknown. Screening is off until the device is serviced.</translation>
    </message>
    <message>
        <source>The recording could not be written: the storage may be full. Please record again.</source>
        <translation>The recording could not be written: the storage may be full. Please record again.</translation>
    </message>
</context>
<context>
    <name>NumKeypadDlg</name>
    <message>
        <source>Del</source>
        <translation>Del</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
</context>
<context>
    <name>PageBoot</name>
    <message>
        <source>Connecting to the network...</source>
        <translation>Connecting to the network...</translation>
    </message>
</context>
<context>
    <name>PageCamera</name>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Distance</source>
        <translation>Distance</translation>
    </message>
    <message>
        <source>Brightness</source>
        <translation>Brightness</translation>
    </message>
    <message>
        <source>Sharpness</source>
        <translation>Sharpness</translation>
    </message>
    <message>
        <source>Pitch</source>
        <translation>Pitch</translation>
    </message>
    <message>
        <source>AUTO OFF</source>
        <translation>AUTO OFF</translation>
    </message>
</context>
<context>
    <name>PageCountry</name>
    <message>
        <source>Region</source>
        <translation>Region</translation>
    </message>
    <message>
        <source>United States</source>
        <translation>United States</translation>
    </message>
    <message>
        <source>India</source>
        <translation>India</translation>
    </message>
    <message>
        <source>China</source>
        <translation>China</translation>
    </message>
    <message>
        <source>Philippines</source>
        <translation>Philippines</translation>
    </message>
    <message>
        <source>Test videos are analysed by the server of this region, and system updates come from it.</source>
        <translation>Test videos are analysed by the server of this region, and system updates come from it.</translation>
    </message>
</context>
<context>
    <name>PageEmail</name>
    <message>
        <source>E-mail Reports</source>
        <translation>E-mail Reports</translation>
    </message>
    <message>
        <source>Send a report after each test</source>
        <translation>Send a report after each test</translation>
    </message>
    <message>
        <source>Off</source>
        <translation>Off</translation>
    </message>
    <message>
        <source>Address</source>
        <translation>Address</translation>
    </message>
    <message>
        <source>Send Test Mail</source>
        <translation>Send Test Mail</translation>
    </message>
    <message>
        <source>History export also attaches</source>
        <translation>History export also attaches</translation>
    </message>
</context>
<context>
    <name>PageHistory</name>
    <message>
        <source>History</source>
        <translation>History</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>Search</translation>
    </message>
    <message>
        <source>Select All</source>
        <translation>Select All</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Delete</translation>
    </message>
    <message>
        <source>E-mail</source>
        <translation>E-mail</translation>
    </message>
    <message>
        <source>Print</source>
        <translation>Print</translation>
    </message>
    <message>
        <source>Photo</source>
        <translation>Photo</translation>
    </message>
</context>
<context>
    <name>PageInfoInput</name>
    <message>
        <source>Patient Information</source>
        <translation>Patient Information</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Sex</source>
        <translation>Sex</translation>
    </message>
    <message>
        <source>Male</source>
        <translation>Male</translation>
    </message>
    <message>
        <source>Female</source>
        <translation>Female</translation>
    </message>
    <message>
        <source>Birthday</source>
        <translation>Birthday</translation>
    </message>
    <message>
        <source>Type the birthday as year-month-day, e.g. 2019-03-02</source>
        <translation>Type the birthday as year-month-day, e.g. 2019-03-02</translation>
    </message>
</context>
<context>
    <name>PageLanguage</name>
    <message>
        <source>Language</source>
        <translation>Language</translation>
    </message>
</context>
<context>
    <name>PageMachineID</name>
    <message>
        <source>Machine ID</source>
        <translation>Machine ID</translation>
    </message>
    <message>
        <source>MAC address</source>
        <translation>MAC address</translation>
    </message>
    <message>
        <source>Version</source>
        <translation>Version</translation>
    </message>
    <message>
        <source>Region</source>
        <translation>Region</translation>
    </message>
    <message>
        <source>Scan to read these details</source>
        <translation>Scan to read these details</translation>
    </message>
</context>
<context>
    <name>PageNoWifi</name>
    <message>
        <source>No Wi-Fi connection</source>
        <translation>No Wi-Fi connection</translation>
    </message>
    <message>
        <source>Connect the device to a Wi-Fi network to start screening.</source>
        <translation>Connect the device to a Wi-Fi network to start screening.</translation>
    </message>
    <message>
        <source>Wi-Fi Settings</source>
        <translation>Wi-Fi Settings</translation>
    </message>
</context>
<context>
    <name>PageParam</name>
    <message>
        <source>Parameters</source>
        <translation>Parameters</translation>
    </message>
    <message>
        <source>Exposure</source>
        <translation>Exposure</translation>
    </message>
    <message>
        <source>Gain</source>
        <translation>Gain</translation>
    </message>
    <message>
        <source>Setting 3</source>
        <translation>Setting 3</translation>
    </message>
    <message>
        <source>LED loop count</source>
        <translation>LED loop count</translation>
    </message>
    <message>
        <source>Setting 5</source>
        <translation>Setting 5</translation>
    </message>
    <message>
        <source>Pitch offset (°)</source>
        <translation>Pitch offset (°)</translation>
    </message>
    <message>
        <source>Distance offset (mm)</source>
        <translation>Distance offset (mm)</translation>
    </message>
</context>
<context>
    <name>PagePrinter</name>
    <message>
        <source>Printer</source>
        <translation>Printer</translation>
    </message>
    <message>
        <source>Printer type</source>
        <translation>Printer type</translation>
    </message>
    <message>
        <source>Bluetooth</source>
        <translation>Bluetooth</translation>
    </message>
    <message>
        <source>Cloud</source>
        <translation>Cloud</translation>
    </message>
    <message>
        <source>Bluetooth printer</source>
        <translation>Bluetooth printer</translation>
    </message>
    <message>
        <source>Cloud printer ID</source>
        <translation>Cloud printer ID</translation>
    </message>
    <message>
        <source>Scan</source>
        <translation>Scan</translation>
    </message>
    <message>
        <source>Test Print</source>
        <translation>Test Print</translation>
    </message>
</context>
<context>
    <name>PageReferral</name>
    <message>
        <source>Referral Criteria</source>
        <translation>Referral Criteria</translation>
    </message>
    <message>
        <source>Matta/Silbert</source>
        <translation>Matta/Silbert</translation>
    </message>
    <message>
        <source>sensitivity: 98% specificity: 68%</source>
        <translation>sensitivity: 98% specificity: 68%</translation>
    </message>
    <message>
        <source>Indication of source: J AAPOS. 2008; 12:490-492</source>
        <translation>Indication of source: J AAPOS. 2008; 12:490-492</translation>
    </message>
    <message>
        <source>In regions/countries where these is universal healthcare, you can choose</source>
        <translation>In regions/countries where these is universal healthcare, you can choose</translation>
    </message>
    <message>
        <source>the &quot;Matta/Silbert&quot;. It may be beneficial to optimise sensitivity, so that</source>
        <translation>the &quot;Matta/Silbert&quot;. It may be beneficial to optimise sensitivity, so that</translation>
    </message>
    <message>
        <source>more children enter into optometry care and few problems are missed.</source>
        <translation>more children enter into optometry care and few problems are missed.</translation>
    </message>
    <message>
        <source>sensitivity: 73% specificity: 92%</source>
        <translation>sensitivity: 73% specificity: 92%</translation>
    </message>
    <message>
        <source>Indication of source: J AAPOS. 2011; 15:551-555</source>
        <translation>Indication of source: J AAPOS. 2011; 15:551-555</translation>
    </message>
    <message>
        <source>In regions where resources are scarce, you can choose the &quot;Arthur2&quot;.</source>
        <translation>In regions where resources are scarce, you can choose the &quot;Arthur2&quot;.</translation>
    </message>
    <message>
        <source>It may be more cost effective to target high specificity to minimize</source>
        <translation>It may be more cost effective to target high specificity to minimize</translation>
    </message>
    <message>
        <source>false referrals.</source>
        <translation>false referrals.</translation>
    </message>
    <message>
        <source>sensitivity: 92% specificity: 90%</source>
        <translation>sensitivity: 92% specificity: 90%</translation>
    </message>
    <message>
        <source>Indication of source: the criterion publisher&apos;s web site</source>
        <translation>Indication of source: the criterion publisher&apos;s web site</translation>
    </message>
    <message>
        <source>Arnold is best at maximizing sensitivity and specificity for the latest AAPOS</source>
        <translation>Arnold is best at maximizing sensitivity and specificity for the latest AAPOS</translation>
    </message>
    <message>
        <source>referral criteria.You can choose “Arnold” for routine check.</source>
        <translation>referral criteria.You can choose “Arnold” for routine check.</translation>
    </message>
</context>
<context>
    <name>PageResult</name>
    <message>
        <source>Screening Result</source>
        <translation>Screening Result</translation>
    </message>
    <message>
        <source>Pass</source>
        <translation>Pass</translation>
    </message>
    <message>
        <source>Refer</source>
        <translation>Refer</translation>
    </message>
    <message>
        <source>SPH</source>
        <translation>SPH</translation>
    </message>
    <message>
        <source>CYL</source>
        <translation>CYL</translation>
    </message>
    <message>
        <source>AXIS</source>
        <translation>AXIS</translation>
    </message>
    <message>
        <source>OD (right)</source>
        <translation>OD (right)</translation>
    </message>
    <message>
        <source>OS (left)</source>
        <translation>OS (left)</translation>
    </message>
    <message>
        <source>PD</source>
        <translation>PD</translation>
    </message>
    <message>
        <source>Next Child</source>
        <translation>Next Child</translation>
    </message>
    <message>
        <source>Print</source>
        <translation>Print</translation>
    </message>
</context>
<context>
    <name>PageSetup</name>
    <message>
        <source>Settings</source>
        <translation>Settings</translation>
    </message>
    <message>
        <source>Wi-Fi</source>
        <translation>Wi-Fi</translation>
    </message>
    <message>
        <source>Time Zone</source>
        <translation>Time Zone</translation>
    </message>
    <message>
        <source>Screen and Power</source>
        <translation>Screen and Power</translation>
    </message>
    <message>
        <source>Region</source>
        <translation>Region</translation>
    </message>
    <message>
        <source>Referral Criteria</source>
        <translation>Referral Criteria</translation>
    </message>
    <message>
        <source>Parameters</source>
        <translation>Parameters</translation>
    </message>
    <message>
        <source>Machine ID</source>
        <translation>Machine ID</translation>
    </message>
    <message>
        <source>System Update</source>
        <translation>System Update</translation>
    </message>
    <message>
        <source>E-mail Reports</source>
        <translation>E-mail Reports</translation>
    </message>
    <message>
        <source>Language</source>
        <translation>Language</translation>
    </message>
    <message>
        <source>Printer</source>
        <translation>Printer</translation>
    </message>
    <message>
        <source>Factory Reset</source>
        <translation>Factory Reset</translation>
    </message>
</context>
<context>
    <name>PageSleepTime</name>
    <message>
        <source>Screen and Power</source>
        <translation>Screen and Power</translation>
    </message>
    <message>
        <source>Screen off after</source>
        <translation>Screen off after</translation>
    </message>
    <message>
        <source>Power off after</source>
        <translation>Power off after</translation>
    </message>
</context>
<context>
    <name>PageTimeZone</name>
    <message>
        <source>Time Zone</source>
        <translation>Time Zone</translation>
    </message>
    <message>
        <source>Local time</source>
        <translation>Local time</translation>
    </message>
</context>
<context>
    <name>PageUserDetail</name>
    <message>
        <source>Test Records</source>
        <translation>Test Records</translation>
    </message>
</context>
<context>
    <name>PageWifi</name>
    <message>
        <source>Wi-Fi</source>
        <translation>Wi-Fi</translation>
    </message>
    <message>
        <source>Phone setup</source>
        <translation>Phone setup</translation>
    </message>
</context>
<context>
    <name>PageWithMenu</name>
    <message>
        <source>Settings</source>
        <translation>Settings</translation>
    </message>
    <message>
        <source>History</source>
        <translation>History</translation>
    </message>
    <message>
        <source>Screening</source>
        <translation>Screening</translation>
    </message>
    <message>
        <source>Power</source>
        <translation>Power</translation>
    </message>
</context>
<context>
    <name>ParentLetter</name>
    <message>
        <source>Sphere (D)</source>
        <translation>Sphere (D)</translation>
    </message>
    <message>
        <source>Cylinder (D)</source>
        <translation>Cylinder (D)</translation>
    </message>
    <message>
        <source>Axis (°)</source>
        <translation>Axis (°)</translation>
    </message>
    <message>
        <source>Right eye (OD)</source>
        <translation>Right eye (OD)</translation>
    </message>
    <message>
        <source>Left eye (OS)</source>
        <translation>Left eye (OS)</translation>
    </message>
    <message>
        <source>Pupil distance: %1 mm</source>
        <translation>Pupil distance: %1 mm</translation>
    </message>
    <message>
        <source>Vision screening result</source>
        <translation>Vision screening result</translation>
    </message>
    <message>
        <source>Screened with: %1
Test date: %2</source>
        <translation>Screened with: %1
Test date: %2</translation>
    </message>
    <message>
        <source>Male</source>
        <translation>Male</translation>
    </message>
    <message>
        <source>Female</source>
        <translation>Female</translation>
    </message>
    <message>
        <source>Sex: %1    Birthday: %2</source>
        <translation>Sex: %1    Birthday: %2</translation>
    </message>
    <message>
        <source>Pass</source>
        <translation>Pass</translation>
    </message>
    <message>
        <source>Refer</source>
        <translation>Refer</translation>
    </message>
    <message>
        <source>No result</source>
        <translation>No result</translation>
    </message>
    <message>
        <source>Result: %1</source>
        <translation>Result: %1</translation>
    </message>
    <message>
        <source>The screening found no sign that your child&apos;s eyes need a closer look today. A screening is a quick check, not a diagnosis: it can miss a problem. If your child squints, tilts the head, holds things very close or complains about the eyes, see an eye-care professional.</source>
        <translation>The screening found no sign that your child&apos;s eyes need a closer look today. A screening is a quick check, not a diagnosis: it can miss a problem. If your child squints, tilts the head, holds things very close or complains about the eyes, see an eye-care professional.</translation>
    </message>
    <message>
        <source>The screening found values that should be checked. This is not a diagnosis: many children referred turn out to need nothing, and only a full eye examination can tell. Please make an appointment with an eye-care professional (optometrist or ophthalmologist) and bring this letter.</source>
        <translation>The screening found values that should be checked. This is not a diagnosis: many children referred turn out to need nothing, and only a full eye examination can tell. Please make an appointment with an eye-care professional (optometrist or ophthalmologist) and bring this letter.</translation>
    </message>
    <message>
        <source>The screening could not give a result. A screening is not a diagnosis; please have your child screened again or see an eye-care professional.</source>
        <translation>The screening could not give a result. A screening is not a diagnosis; please have your child screened again or see an eye-care professional.</translation>
    </message>
    <message>
        <source>No pupil photo was kept for this test.</source>
        <translation>No pupil photo was kept for this test.</translation>
    </message>
    <message>
        <source>Pupil photo taken during the test:</source>
        <translation>Pupil photo taken during the test:</translation>
    </message>
</context>
<context>
    <name>TimeDlg</name>
    <message>
        <source>1 Minute</source>
        <translation>1 Minute</translation>
    </message>
    <message>
        <source>5 Minutes</source>
        <translation>5 Minutes</translation>
    </message>
    <message>
        <source>10 Minutes</source>
        <translation>10 Minutes</translation>
    </message>
    <message>
        <source>30 Minutes</source>
        <translation>30 Minutes</translation>
    </message>
    <message>
        <source>1 Hour</source>
        <translation>1 Hour</translation>
    </message>
    <message>
        <source>Never</source>
        <translation>Never</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Cancel</translation>
    </message>
</context>
<context>
    <name>UploadDlg</name>
    <message>
        <source>Data is processing, Please wait...</source>
        <translation>Data is processing, Please wait...</translation>
    </message>
    <message>
        <source>File is downloading, Please wait...</source>
        <translation>File is downloading, Please wait...</translation>
    </message>
    <message>
        <source>It is printing, Please wait...</source>
        <translation>It is printing, Please wait...</translation>
    </message>
    <message>
        <source>Version checking, Please wait...</source>
        <translation>Version checking, Please wait...</translation>
    </message>
    <message>
        <source>Sending Result, Please wait...</source>
        <translation>Sending Result, Please wait...</translation>
    </message>
    <message>
        <source>Mail is Sending, Please wait...</source>
        <translation>Mail is Sending, Please wait...</translation>
    </message>
</context>
<context>
    <name>WifiPwdDlg</name>
    <message>
        <source>Enter Password</source>
        <translation>Enter Password</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>Connect</source>
        <translation>Connect</translation>
    </message>
</context>
<context>
    <name>ZoneDlg</name>
    <message>
        <source>Time Zone</source>
        <translation>Time Zone</translation>
    </message>
    <message>
        <source>UTC+00: Universal Coordinated Time</source>
        <translation>UTC+00: Universal Coordinated Time</translation>
    </message>
    <message>
        <source>UTC+01: European Central Time</source>
        <translation>UTC+01: European Central Time</translation>
    </message>
    <message>
        <source>UTC+02: Eastern European Time</source>
        <translation>UTC+02: Eastern European Time</translation>
    </message>
    <message>
        <source>UTC+03: Eastern African Time</source>
        <translation>UTC+03: Eastern African Time</translation>
    </message>
    <message>
        <source>UTC+04: Near East Time</source>
        <translation>UTC+04: Near East Time</translation>
    </message>
    <message>
        <source>UTC+05: Pakistan Lahore Time</source>
        <translation>UTC+05: Pakistan Lahore Time</translation>
    </message>
    <message>
        <source>UTC+5.5: Indian Standard Time</source>
        <translation>UTC+5.5: Indian Standard Time</translation>
    </message>
    <message>
        <source>UTC+06: Bangladesh Standard Time</source>
        <translation>UTC+06: Bangladesh Standard Time</translation>
    </message>
    <message>
        <source>UTC+07: Vietnam Standard Time</source>
        <translation>UTC+07: Vietnam Standard Time</translation>
    </message>
    <message>
        <source>UTC+08: China Standard Time</source>
        <translation>UTC+08: China Standard Time</translation>
    </message>
    <message>
        <source>UTC+09: Japan Standard Time</source>
        <translation>UTC+09: Japan Standard Time</translation>
    </message>
    <message>
        <source>UTC+10: Australia Eastern Time</source>
        <translation>UTC+10: Australia Eastern Time</translation>
    </message>
    <message>
        <source>UTC+11: Solomon Standard Time</source>
        <translation>UTC+11: Solomon Standard Time</translation>
    </message>
    <message>
        <source>UTC+12: New Zealand Standard Time</source>
        <translation>UTC+12: New Zealand Standard Time</translation>
    </message>
    <message>
        <source>UTC-01: Central African Time</source>
        <translation>UTC-01: Central African Time</translation>
    </message>
    <message>
        <source>UTC-02: Noronha Standard Time</source>
        <translation>UTC-02: Noronha Standard Time</translation>
    </message>
    <message>
        <source>UTC-03: Brazil Eastern Time</source>
        <translation>UTC-03: Brazil Eastern Time</translation>
    </message>
    <message>
        <source>UTC-04: Virgin Islands Time</source>
        <translation>UTC-04: Virgin Islands Time</translation>
    </message>
    <message>
        <source>UTC-05: Eastern Standard Time</source>
        <translation>UTC-05: Eastern Standard Time</translation>
    </message>
    <message>
        <source>UTC-06: Central Standard Time</source>
        <translation>UTC-06: Central Standard Time</translation>
    </message>
    <message>
        <source>UTC-07: Mountain Standard Time</source>
        <translation>UTC-07: Mountain Standard Time</translation>
    </message>
    <message>
        <source>UTC-08: Pacific Standard Time</source>
        <translation>UTC-08: Pacific Standard Time</translation>
    </message>
    <message>
        <source>UTC-09: Alaska Standard Time</source>
        <translation>UTC-09: Alaska Standard Time</translation>
    </message>
    <message>
        <source>UTC-10: Hawaii Standard Time</source>
        <translation>UTC-10: Hawaii Standard Time</translation>
    </message>
    <message>
        <source>UTC-11: Midway Islands Time</source>
        <translation>UTC-11: Midway Islands Time</translation>
    </message>
</context>
<context>
    <name>versiondlg</name>
    <message>
        <source>Version Switch</source>
        <translation>Version Switch</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Switch to %1</source>
        <translation>Switch to %1</translation>
    </message>
    <message>
        <source>Yes</source>
        <translation>Yes</translation>
    </message>
    <message>
        <source>No</source>
        <translation>No</translation>
    </message>
    <message>
        <source>Version Check Failed!</source>
        <translation>Version Check Failed!</translation>
    </message>
    <message>
        <source>System Switch Failed!</source>
        <translation>System Switch Failed!</translation>
    </message>
    <message>
        <source>System Switch Success!</source>
        <translation>System Switch Success!</translation>
    </message>
</context>
</TS>
