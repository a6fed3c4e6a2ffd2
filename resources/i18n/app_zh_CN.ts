<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN" sourcelanguage="en_US">
<context>
    <name>BtListDlg</name>
    <message>
        <source>Bluetooth Devices</source>
        <translation>蓝牙设备</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>名称</translation>
    </message>
    <message>
        <source>MAC</source>
        <translation>MAC 地址</translation>
    </message>
    <message>
        <source>RSSI</source>
        <translation>信号强度</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Bind</source>
        <translation>绑定</translation>
    </message>
    <message>
        <source>%1 dBm</source>
        <translation>%1 dBm</translation>
    </message>
    <message>
        <source>Scan failed</source>
        <translation>扫描失败</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>确定</translation>
    </message>
    <message>
        <source>Scanning... %1 s</source>
        <translation>正在扫描… %1 秒</translation>
    </message>
    <message>
        <source>No device found</source>
        <translation>未找到设备</translation>
    </message>
    <message>
        <source>Choose the printer</source>
        <translation>请选择打印机</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>停止</translation>
    </message>
    <message>
        <source>Scan Again</source>
        <translation>重新扫描</translation>
    </message>
</context>
<context>
    <name>GData</name>
    <message>
        <source>No response from the analysis server.</source>
        <translation>分析服务器无响应。</translation>
    </message>
    <message>
        <source>The analysis server&apos;s answer could not be read.</source>
        <translation>无法读取分析服务器的应答。</translation>
    </message>
    <message>
        <source>The mail security setting &quot;%1&quot; is not none, starttls or tls</source>
        <translation>邮件安全设置“%1”无效，只能是 none、starttls 或 tls</translation>
    </message>
    <message>
        <source>There is no report to send</source>
        <translation>没有可发送的报告</translation>
    </message>
    <message>
        <source>The report %1 cannot be read</source>
        <translation>无法读取报告 %1</translation>
    </message>
    <message>
        <source>Vision screening records</source>
        <translation>视力筛查记录</translation>
    </message>
    <message>
        <source>Pass</source>
        <translation>通过</translation>
    </message>
    <message>
        <source>Refer</source>
        <translation>转诊</translation>
    </message>
    <message>
        <source>No result</source>
        <translation>无结果</translation>
    </message>
    <message>
        <source>Vision screening of %1: %2</source>
        <translation>%1 的视力筛查：%2</translation>
    </message>
    <message>
        <source>Vision screening report</source>
        <translation>视力筛查报告</translation>
    </message>
    <message>
        <source>Name: %1</source>
        <translation>姓名：%1</translation>
    </message>
    <message>
        <source>Sex: %1</source>
        <translation>性别：%1</translation>
    </message>
    <message>
        <source>Male</source>
        <translation>男</translation>
    </message>
    <message>
        <source>Female</source>
        <translation>女</translation>
    </message>
    <message>
        <source>Birthday: %1</source>
        <translation>出生日期：%1</translation>
    </message>
    <message>
        <source>Test time: %1</source>
        <translation>筛查时间：%1</translation>
    </message>
    <message>
        <source>Right eye (OD): sphere %1, cylinder %2, axis %3</source>
        <translation>右眼 (OD)：球镜 %1，柱镜 %2，轴位 %3</translation>
    </message>
    <message>
        <source>Left eye (OS): sphere %1, cylinder %2, axis %3</source>
        <translation>左眼 (OS)：球镜 %1，柱镜 %2，轴位 %3</translation>
    </message>
    <message>
        <source>Pupil distance: %1</source>
        <translation>瞳距：%1</translation>
    </message>
    <message>
        <source>Result: %1</source>
        <translation>结果：%1</translation>
    </message>
    <message>
        <source>The recording of the test is attached.</source>
        <translation>附件为本次筛查的录像。</translation>
    </message>
    <message>
        <source>Test message from the vision screener</source>
        <translation>来自视力筛查仪的测试邮件</translation>
    </message>
    <message>
        <source>This message confirms that the screener can send its reports to this address.</source>
        <translation>收到此邮件，说明筛查仪可以向该地址发送报告。</translation>
    </message>
    <message>
        <source>Open printer failed</source>
        <translation>打开打印机失败</translation>
    </message>
    <message>
        <source>Printer init failed</source>
        <translation>打印机初始化失败</translation>
    </message>
    <message>
        <source>Orvella vision screener %1</source>
        <translation>Orvella 视力筛查仪 %1</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>姓名</translation>
    </message>
    <message>
        <source>Sex</source>
        <translation>性别</translation>
    </message>
    <message>
        <source>Birthday</source>
        <translation>出生日期</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>筛查时间</translation>
    </message>
    <message>
        <source>OD SPH</source>
        <translation>右球镜</translation>
    </message>
    <message>
        <source>OD CYL</source>
        <translation>右柱镜</translation>
    </message>
    <message>
        <source>OD AXIS</source>
        <translation>右轴位</translation>
    </message>
    <message>
        <source>OS SPH</source>
        <translation>左球镜</translation>
    </message>
    <message>
        <source>OS CYL</source>
        <translation>左柱镜</translation>
    </message>
    <message>
        <source>OS AXIS</source>
        <translation>左轴位</translation>
    </message>
    <message>
        <source>PD</source>
        <translation>瞳距</translation>
    </message>
    <message>
        <source>Screening results</source>
        <translation>筛查结果</translation>
    </message>
    <message>
        <source>The export could not be written to the USB drive %1</source>
        <translation>无法将导出文件写入 U 盘 %1</translation>
    </message>
</context>
<context>
    <name>KeypadDlg</name>
    <message>
        <source>Del</source>
        <translation>删除</translation>
    </message>
    <message>
        <source>Enter</source>
        <translation>回车</translation>
    </message>
    <message>
        <source>Shift</source>
        <translation>大写</translation>
    </message>
    <message>
        <source>.?123</source>
        <translation>.?123</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>完成</translation>
    </message>
    <message>
        <source>Space</source>
        <translation>空格</translation>
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
        <translation>邮件服务器 %1 在 %2 秒内没有响应</translation>
    </message>
    <message>
        <source>No mail server is set</source>
        <translation>未设置邮件服务器</translation>
    </message>
    <message>
        <source>The mail server %1 is not a valid address</source>
        <translation>邮件服务器地址 %1 无效</translation>
    </message>
    <message>
        <source>The sender address &quot;%1&quot; is not valid</source>
        <translation>发件人地址“%1”无效</translation>
    </message>
    <message>
        <source>No recipient address is set</source>
        <translation>未设置收件人地址</translation>
    </message>
    <message>
        <source>The recipient address &quot;%1&quot; is not valid</source>
        <translation>收件人地址“%1”无效</translation>
    </message>
    <message>
        <source>The attachment %1 is missing</source>
        <translation>找不到附件 %1</translation>
    </message>
    <message>
        <source>The attachment %1 cannot be read</source>
        <translation>无法读取附件 %1</translation>
    </message>
    <message>
        <source>The attachment %1 is empty</source>
        <translation>附件 %1 是空的</translation>
    </message>
    <message>
        <source>The mailer cannot start</source>
        <translation>无法启动邮件发送</translation>
    </message>
    <message>
        <source>The mail server %1 cannot be reached</source>
        <translation>无法连接邮件服务器 %1</translation>
    </message>
    <message>
        <source>The mail server %1 refused the user name or password</source>
        <translation>邮件服务器 %1 不接受该用户名或密码</translation>
    </message>
    <message>
        <source>The mail server %1 does not offer an encrypted connection</source>
        <translation>邮件服务器 %1 不支持加密连接</translation>
    </message>
    <message>
        <source>The encrypted connection to the mail server %1 failed: %2</source>
        <translation>与邮件服务器 %1 的加密连接失败：%2</translation>
    </message>
    <message>
        <source>The mail server refused the recipient: %1</source>
        <translation>邮件服务器拒绝了收件人：%1</translation>
    </message>
    <message>
        <source>The mail server refused mail from %1: %2</source>
        <translation>邮件服务器拒收来自 %1 的邮件：%2</translation>
    </message>
    <message>
        <source>The mail server %1 refused the login: %2</source>
        <translation>邮件服务器 %1 拒绝登录：%2</translation>
    </message>
    <message>
        <source>The mail server %1 turned the device away: %2</source>
        <translation>邮件服务器 %1 拒绝了本设备的连接：%2</translation>
    </message>
    <message>
        <source>The mail server refused the message: %1</source>
        <translation>邮件服务器拒收了这封邮件：%1</translation>
    </message>
    <message>
        <source>Sending the mail to %1 failed: %2</source>
        <translation>通过 %1 发送邮件失败：%2</translation>
    </message>
</context>
<context>
    <name>MainDialog</name>
    <message>
        <source>Error</source>
        <translation>错误</translation>
    </message>
    <message>
        <source>User Name cannot be empry!</source>
        <translation>姓名不能为空。</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>确定</translation>
    </message>
    <message>
        <source>Network is not ready!</source>
        <translation>网络尚未就绪。</translation>
    </message>
    <message>
        <source>Date is not valid!</source>
        <translation>日期无效</translation>
    </message>
    <message>
        <source>Please enter your name</source>
        <translation>请输入姓名</translation>
    </message>
    <message>
        <source>Year-Month-Date</source>
        <translation>年-月-日</translation>
    </message>
    <message>
        <source>Year</source>
        <translation>年</translation>
    </message>
    <message>
        <source>Month</source>
        <translation>月</translation>
    </message>
    <message>
        <source>Day</source>
        <translation>日</translation>
    </message>
    <message>
        <source>Power Off</source>
        <translation>是否关机？</translation>
    </message>
    <message>
        <source>Yes</source>
        <translation>是</translation>
    </message>
    <message>
        <source>No</source>
        <translation>否</translation>
    </message>
    <message>
        <source>Version Check Failed!</source>
        <translation>版本检查失败</translation>
    </message>
    <message>
        <source>No New Version!</source>
        <translation>已是最新版本</translation>
    </message>
    <message>
        <source>System Update</source>
        <translation>是否更新系统？</translation>
    </message>
    <message>
        <source>System Update Failed!</source>
        <translation>系统更新失败</translation>
    </message>
    <message>
        <source>System Update Success!</source>
        <translation>系统更新成功</translation>
    </message>
    <message>
        <source>Low Battery</source>
        <translation>电量不足</translation>
    </message>
    <message>
        <source>20% battery remaining</source>
        <translation>剩余电量 20%</translation>
    </message>
    <message>
        <source>Camera Open Failed!</source>
        <translation>无法打开相机。</translation>
    </message>
    <message>
        <source>%1 Minutes</source>
        <translation>%1 分钟</translation>
    </message>
    <message>
        <source>Connect to Network</source>
        <translation>连接网络</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>删除</translation>
    </message>
    <message>
        <source>Connect</source>
        <translation>连接</translation>
    </message>
    <message>
        <source>Connect Failed!</source>
        <translation>连接失败</translation>
    </message>
    <message>
        <source>Delete Failed!</source>
        <translation>删除失败</translation>
    </message>
    <message>
        <source>Connect to the unsafe network?</source>
        <translation>是否连接不安全的网络？</translation>
    </message>
    <message>
        <source>Version List File Download Failed!</source>
        <translation>版本列表下载失败</translation>
    </message>
    <message>
        <source>Wrong Password!</source>
        <translation>密码错误</translation>
    </message>
    <message>
        <source>AUTO ON</source>
        <translation>自动：开</translation>
    </message>
    <message>
        <source>AUTO OFF</source>
        <translation>自动：关</translation>
    </message>
    <message>
        <source>Please move the cross sign to the center</source>
        <translation>请将十字标移至中央</translation>
    </message>
    <message>
        <source>Please lower the ambient brightness to below 20</source>
        <translation>请将环境亮度降至 20 以下</translation>
    </message>
    <message>
        <source>Vedio File Open Failed!</source>
        <translation>无法打开视频文件。</translation>
    </message>
    <message>
        <source>Message</source>
        <translation>消息</translation>
    </message>
    <message>
        <source>Data is processing,please wait...</source>
        <translation>正在处理数据，请稍候...</translation>
    </message>
    <message>
        <source>Waiting...</source>
        <translation>等待中...</translation>
    </message>
    <message>
        <source>The pupil image has been sent to your email.</source>
        <translation>瞳孔图像已发送至您的邮箱。</translation>
    </message>
    <message>
        <source>Data processing failed: %1</source>
        <translation>数据处理失败：%1</translation>
    </message>
    <message>
        <source>On</source>
        <translation>开</translation>
    </message>
    <message>
        <source>Off</source>
        <translation>关</translation>
    </message>
    <message>
        <source>Please Input Email</source>
        <translation>请输入邮箱地址</translation>
    </message>
    <message>
        <source>Invalid E-mail Address</source>
        <translation>邮箱地址无效</translation>
    </message>
    <message>
        <source>Mail is Sending, Please wait...</source>
        <translation>正在发送邮件，请稍候...</translation>
    </message>
    <message>
        <source>Success</source>
        <translation>成功</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>姓名</translation>
    </message>
    <message>
        <source>Sex</source>
        <translation>性别</translation>
    </message>
    <message>
        <source>Birthday</source>
        <translation>出生日期</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>筛查时间</translation>
    </message>
    <message>
        <source>OD SPH</source>
        <translation>右球镜</translation>
    </message>
    <message>
        <source>OD CYL</source>
        <translation>右柱镜</translation>
    </message>
    <message>
        <source>OD AXIS</source>
        <translation>右轴位</translation>
    </message>
    <message>
        <source>OS SPH</source>
        <translation>左球镜</translation>
    </message>
    <message>
        <source>OS CYL</source>
        <translation>左柱镜</translation>
    </message>
    <message>
        <source>OS AXIS</source>
        <translation>左轴位</translation>
    </message>
    <message>
        <source>PD</source>
        <translation>瞳距</translation>
    </message>
    <message>
        <source>Result</source>
        <translation>结果</translation>
    </message>
    <message>
        <source>Male</source>
        <translation>男</translation>
    </message>
    <message>
        <source>Female</source>
        <translation>女</translation>
    </message>
    <message>
        <source>No Record Selected</source>
        <translation>未选择记录</translation>
    </message>
    <message>
        <source>Delete Records</source>
        <translation>是否删除所选记录？</translation>
    </message>
    <message>
        <source>Open File Error</source>
        <translation>无法打开文件。</translation>
    </message>
    <message>
        <source>Pass</source>
        <translation>通过</translation>
    </message>
    <message>
        <source>Refer</source>
        <translation>转诊</translation>
    </message>
    <message>
        <source>The camera is getting ready, please wait...</source>
        <translation>相机正在准备，请稍候...</translation>
    </message>
    <message>
        <source>The camera is not ready yet, please try again.</source>
        <translation>相机尚未就绪，请重试。</translation>
    </message>
    <message>
        <source>No report was sent: set the e-mail address on the E-mail Reports page.</source>
        <translation>未发送报告：请在邮件报告页面设置邮箱地址。</translation>
    </message>
    <message>
        <source>Unknown</source>
        <translation>未知</translation>
    </message>
    <message>
        <source>%1: %2 to %3</source>
        <translation>%1：%2 至 %3</translation>
    </message>
    <message>
        <source>Value Out of Range</source>
        <translation>数值超出范围</translation>
    </message>
    <message>
        <source>%1 must be a whole number from %2 to %3.</source>
        <translation>%1 必须是 %2 至 %3 之间的整数。</translation>
    </message>
    <message>
        <source>None</source>
        <translation>无</translation>
    </message>
    <message>
        <source>Invalid Device ID</source>
        <translation>设备 ID 无效</translation>
    </message>
    <message>
        <source>A device ID cannot contain &quot;|&quot;.</source>
        <translation>设备 ID 不能包含“|”。</translation>
    </message>
    <message>
        <source>Factory Reset</source>
        <translation>恢复出厂设置</translation>
    </message>
    <message>
        <source>All settings return to their factory values and the device restarts. The test history is kept.</source>
        <translation>所有设置将恢复为出厂值，设备随后重新启动。筛查记录会保留。</translation>
    </message>
    <message>
        <source>The device restarts now.</source>
        <translation>设备即将重新启动。</translation>
    </message>
    <message>
        <source>Printed</source>
        <translation>已打印</translation>
    </message>
    <message>
        <source>No printer is set</source>
        <translation>未设置打印机</translation>
    </message>
    <message>
        <source>Printer bound: %1</source>
        <translation>打印机已绑定：%1</translation>
    </message>
    <message>
        <source>Phone setup could not start!</source>
        <translation>无法开启手机配网！</translation>
    </message>
    <message>
        <source>Stop setup</source>
        <translation>停止配网</translation>
    </message>
    <message>
        <source>Phone setup</source>
        <translation>手机配网</translation>
    </message>
    <message>
        <source>PIN %1, %2 left</source>
        <translation>PIN %1，剩余 %2</translation>
    </message>
    <message>
        <source>Phone setup closed: too many wrong PINs</source>
        <translation>手机配网已关闭：PIN 错误次数过多</translation>
    </message>
    <message>
        <source>Phone setup closed: time is up</source>
        <translation>手机配网已关闭：时间已到</translation>
    </message>
    <message>
        <source>Network %1 added by provisioning</source>
        <translation>已通过手机配网添加网络 %1</translation>
    </message>
    <message>
        <source>Provisioning could not add network %1</source>
        <translation>手机配网未能添加网络 %1</translation>
    </message>
    <message>
        <source>Network %1 chosen by provisioning</source>
        <translation>已通过手机配网切换到网络 %1</translation>
    </message>
    <message>
        <source>Provisioning could not choose network %1</source>
        <translation>手机配网未能切换到网络 %1</translation>
    </message>
    <message>
        <source>Network %1 forgotten by provisioning</source>
        <translation>已通过手机配网删除网络 %1</translation>
    </message>
    <message>
        <source>Provisioning could not forget network %1</source>
        <translation>手机配网未能删除网络 %1</translation>
    </message>
    <message>
        <source>Also saved on the USB drive in %1</source>
        <translation>已同时保存到 U 盘的 %1 文件夹</translation>
    </message>
    <message>
        <source>No pupil photo was kept for the test of %1.</source>
        <translation>%1 的筛查未保存瞳孔照片。</translation>
    </message>
    <message>
        <source>Pupil photo of the test of %1</source>
        <translation>%1 筛查的瞳孔照片</translation>
    </message>
    <message>
        <source>A name cannot contain &quot;,&quot; or &quot;|&quot;.</source>
        <translation>姓名不能包含“,”或“|”。</translation>
    </message>
    <message>
        <source>The history could not be read or written; nothing was deleted.</source>
        <translation>无法读取或写入历史记录，未删除任何记录。</translation>
    </message>
    <message>
        <source>The settings file %1 cannot be read, so the referral criterion is unknown. Screening is off until the device is serviced.</source>
        <translation>无法读取设置文件 %1，转诊标准未知。在设备检修之前无法进行筛查。</translation>
    </message>
    <message>
        <source>The recording could not be written: the storage may be full. Please record again.</source>
        <translation>无法写入录像：存储空间可能已满。请重新录制。</translation>
    </message>
</context>
<context>
    <name>NumKeypadDlg</name>
    <message>
        <source>Del</source>
        <translation>删除</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>完成</translation>
    </message>
</context>
<context>
    <name>PageBoot</name>
    <message>
        <source>Connecting to the network...</source>
        <translation>正在连接网络...</translation>
    </message>
</context>
<context>
    <name>PageCamera</name>
    <message>
        <source>Name</source>
        <translation>姓名</translation>
    </message>
    <message>
        <source>Distance</source>
        <translation>距离</translation>
    </message>
    <message>
        <source>Brightness</source>
        <translation>亮度</translation>
    </message>
    <message>
        <source>Sharpness</source>
        <translation>清晰度</translation>
    </message>
    <message>
        <source>Pitch</source>
        <translation>俯仰角</translation>
    </message>
    <message>
        <source>AUTO OFF</source>
        <translation>自动：关</translation>
    </message>
</context>
<context>
    <name>PageCountry</name>
    <message>
        <source>Region</source>
        <translation>地区</translation>
    </message>
    <message>
        <source>United States</source>
        <translation>美国</translation>
    </message>
    <message>
        <source>India</source>
        <translation>印度</translation>
    </message>
    <message>
        <source>China</source>
        <translation>中国</translation>
    </message>
    <message>
        <source>Philippines</source>
        <translation>菲律宾</translation>
    </message>
    <message>
        <source>Test videos are analysed by the server of this region, and system updates come from it.</source>
        <translation>筛查视频由该地区的服务器分析，系统更新也来自该服务器。</translation>
    </message>
</context>
<context>
    <name>PageEmail</name>
    <message>
        <source>E-mail Reports</source>
        <translation>邮件报告</translation>
    </message>
    <message>
        <source>Send a report after each test</source>
        <translation>每次筛查后发送报告</translation>
    </message>
    <message>
        <source>Off</source>
        <translation>关</translation>
    </message>
    <message>
        <source>Address</source>
        <translation>邮箱地址</translation>
    </message>
    <message>
        <source>Send Test Mail</source>
        <translation>发送测试邮件</translation>
    </message>
    <message>
        <source>History export also attaches</source>
        <translation>历史导出同时附带</translation>
    </message>
</context>
<context>
    <name>PageHistory</name>
    <message>
        <source>History</source>
        <translation>历史记录</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>姓名</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>搜索</translation>
    </message>
    <message>
        <source>Select All</source>
        <translation>全选</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>删除</translation>
    </message>
    <message>
        <source>E-mail</source>
        <translation>发送邮件</translation>
    </message>
    <message>
        <source>Print</source>
        <translation>打印</translation>
    </message>
    <message>
        <source>Photo</source>
        <translation>照片</translation>
    </message>
</context>
<context>
    <name>PageInfoInput</name>
    <message>
        <source>Patient Information</source>
        <translation>受检者信息</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>姓名</translation>
    </message>
    <message>
        <source>Sex</source>
        <translation>性别</translation>
    </message>
    <message>
        <source>Male</source>
        <translation>男</translation>
    </message>
    <message>
        <source>Female</source>
        <translation>女</translation>
    </message>
    <message>
        <source>Birthday</source>
        <translation>出生日期</translation>
    </message>
    <message>
        <source>Type the birthday as year-month-day, e.g. 2019-03-02</source>
        <translation>请按“年-月-日”输入出生日期，例如 2019-03-02</translation>
    </message>
</context>
<context>
    <name>PageLanguage</name>
    <message>
        <source>Language</source>
        <translation>语言</translation>
    </message>
</context>
<context>
    <name>PageMachineID</name>
    <message>
        <source>Machine ID</source>
        <translation>设备编号</translation>
    </message>
    <message>
        <source>MAC address</source>
        <translation>MAC 地址</translation>
    </message>
    <message>
        <source>Version</source>
        <translation>版本</translation>
    </message>
    <message>
        <source>Region</source>
        <translation>地区</translation>
    </message>
    <message>
        <source>Scan to read these details</source>
        <translation>扫码读取以上信息</translation>
    </message>
</context>
<context>
    <name>PageNoWifi</name>
    <message>
        <source>No Wi-Fi connection</source>
        <translation>未连接 Wi-Fi</translation>
    </message>
    <message>
        <source>Connect the device to a Wi-Fi network to start screening.</source>
        <translation>请将设备连接到 Wi-Fi 网络后再开始筛查。</translation>
    </message>
    <message>
        <source>Wi-Fi Settings</source>
        <translation>Wi-Fi 设置</translation>
    </message>
</context>
<context>
    <name>PageParam</name>
    <message>
        <source>Parameters</source>
        <translation>参数</translation>
    </message>
    <message>
        <source>Exposure</source>
        <translation>曝光</translation>
    </message>
    <message>
        <source>Gain</source>
        <translation>增益</translation>
    </message>
    <message>
        <source>Setting 3</source>
        <translation>设置 3</translation>
    </message>
    <message>
        <source>LED loop count</source>
        <translation>LED 闪烁周期数</translation>
    </message>
    <message>
        <source>Setting 5</source>
        <translation>设置 5</translation>
    </message>
    <message>
        <source>Pitch offset (°)</source>
        <translation>俯仰角偏移（°）</translation>
    </message>
    <message>
        <source>Distance offset (mm)</source>
        <translation>距离偏移（毫米）</translation>
    </message>
</context>
<context>
    <name>PagePrinter</name>
    <message>
        <source>Printer</source>
        <translation>打印机</translation>
    </message>
    <message>
        <source>Printer type</source>
        <translation>打印机类型</translation>
    </message>
    <message>
        <source>Bluetooth</source>
        <translation>蓝牙</translation>
    </message>
    <message>
        <source>Cloud</source>
        <translation>云打印</translation>
    </message>
    <message>
        <source>Bluetooth printer</source>
        <translation>蓝牙打印机</translation>
    </message>
    <message>
        <source>Cloud printer ID</source>
        <translation>云打印机 ID</translation>
    </message>
    <message>
        <source>Scan</source>
        <translation>扫描</translation>
    </message>
    <message>
        <source>Test Print</source>
        <translation>打印测试页</translation>
    </message>
</context>
<context>
    <name>PageReferral</name>
    <message>
        <source>Referral Criteria</source>
        <translation>转诊标准</translation>
    </message>
    <message>
        <source>Matta/Silbert</source>
        <translation>Matta/Silbert</translation>
    </message>
    <message>
        <source>sensitivity: 98% specificity: 68%</source>
        <translation>灵敏度：98% 特异度：68%</translation>
    </message>
    <message>
        <source>Indication of source: J AAPOS. 2008; 12:490-492</source>
        <translation>来源：J AAPOS. 2008; 12:490-492</translation>
    </message>
    <message>
        <source>In regions/countries where these is universal healthcare, you can choose</source>
        <translation>在实行全民医保的国家或地区，可选择</translation>
    </message>
    <message>
        <source>the &quot;Matta/Silbert&quot;. It may be beneficial to optimise sensitivity, so that</source>
        <translation>“Matta/Silbert”。优先提高灵敏度可能更有益，</translation>
    </message>
    <message>
        <source>more children enter into optometry care and few problems are missed.</source>
        <translation>让更多儿童得到视光诊疗，减少漏诊。</translation>
    </message>
    <message>
        <source>sensitivity: 73% specificity: 92%</source>
        <translation>灵敏度：73% 特异度：92%</translation>
    </message>
    <message>
        <source>Indication of source: J AAPOS. 2011; 15:551-555</source>
        <translation>来源：J AAPOS. 2011; 15:551-555</translation>
    </message>
    <message>
        <source>In regions where resources are scarce, you can choose the &quot;Arthur2&quot;.</source>
        <translation>在资源匮乏的地区，可选择“Arthur2”。</translation>
    </message>
    <message>
        <source>It may be more cost effective to target high specificity to minimize</source>
        <translation>以高特异度为目标、尽量减少误转诊，</translation>
    </message>
    <message>
        <source>false referrals.</source>
        <translation>可能更具成本效益。</translation>
    </message>
    <message>
        <source>sensitivity: 92% specificity: 90%</source>
        <translation>灵敏度：92% 特异度：90%</translation>
    </message>
    <message>
        <source>Indication of source: the criterion publisher&apos;s web site</source>
        <translation>来源：该标准发布方的网站</translation>
    </message>
    <message>
        <source>Arnold is best at maximizing sensitivity and specificity for the latest AAPOS</source>
        <translation>对于最新的 AAPOS 转诊标准，Arnold 最能同时提高灵敏度和特异度。</translation>
    </message>
    <message>
        <source>referral criteria.You can choose “Arnold” for routine check.</source>
        <translation>常规检查可选择“Arnold”。</translation>
    </message>
</context>
<context>
    <name>PageResult</name>
    <message>
        <source>Screening Result</source>
        <translation>筛查结果</translation>
    </message>
    <message>
        <source>Pass</source>
        <translation>通过</translation>
    </message>
    <message>
        <source>Refer</source>
        <translation>转诊</translation>
    </message>
    <message>
        <source>SPH</source>
        <translation>球镜</translation>
    </message>
    <message>
        <source>CYL</source>
        <translation>柱镜</translation>
    </message>
    <message>
        <source>AXIS</source>
        <translation>轴位</translation>
    </message>
    <message>
        <source>OD (right)</source>
        <translation>右眼 (OD)</translation>
    </message>
    <message>
        <source>OS (left)</source>
        <translation>左眼 (OS)</translation>
    </message>
    <message>
        <source>PD</source>
        <translation>瞳距</translation>
    </message>
    <message>
        <source>Next Child</source>
        <translation>下一位</translation>
    </message>
    <message>
        <source>Print</source>
        <translation>打印</translation>
    </message>
</context>
<context>
    <name>PageSetup</name>
    <message>
        <source>Settings</source>
        <translation>设置</translation>
    </message>
    <message>
        <source>Wi-Fi</source>
        <translation>Wi-Fi</translation>
    </message>
    <message>
        <source>Time Zone</source>
        <translation>时区</translation>
    </message>
    <message>
        <source>Screen and Power</source>
        <translation>屏幕与电源</translation>
    </message>
    <message>
        <source>Region</source>
        <translation>地区</translation>
    </message>
    <message>
        <source>Referral Criteria</source>
        <translation>转诊标准</translation>
    </message>
    <message>
        <source>Parameters</source>
        <translation>参数</translation>
    </message>
    <message>
        <source>Machine ID</source>
        <translation>设备编号</translation>
    </message>
    <message>
        <source>System Update</source>
        <translation>系统更新</translation>
    </message>
    <message>
        <source>E-mail Reports</source>
        <translation>邮件报告</translation>
    </message>
    <message>
        <source>Language</source>
        <translation>语言</translation>
    </message>
    <message>
        <source>Printer</source>
        <translation>打印机</translation>
    </message>
    <message>
        <source>Factory Reset</source>
        <translation>恢复出厂设置</translation>
    </message>
</context>
<context>
    <name>PageSleepTime</name>
    <message>
        <source>Screen and Power</source>
        <translation>屏幕与电源</translation>
    </message>
    <message>
        <source>Screen off after</source>
        <translation>自动熄屏</translation>
    </message>
    <message>
        <source>Power off after</source>
        <translation>自动关机</translation>
    </message>
</context>
<context>
    <name>PageTimeZone</name>
    <message>
        <source>Time Zone</source>
        <translation>时区</translation>
    </message>
    <message>
        <source>Local time</source>
        <translation>本地时间</translation>
    </message>
</context>
<context>
    <name>PageUserDetail</name>
    <message>
        <source>Test Records</source>
        <translation>筛查记录</translation>
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
        <translation>手机配网</translation>
    </message>
</context>
<context>
    <name>PageWithMenu</name>
    <message>
        <source>Settings</source>
        <translation>设置</translation>
    </message>
    <message>
        <source>History</source>
        <translation>历史记录</translation>
    </message>
    <message>
        <source>Screening</source>
        <translation>筛查</translation>
    </message>
    <message>
        <source>Power</source>
        <translation>关机</translation>
    </message>
</context>
<context>
    <name>ParentLetter</name>
    <message>
        <source>Sphere (D)</source>
        <translation>球镜 (D)</translation>
    </message>
    <message>
        <source>Cylinder (D)</source>
        <translation>柱镜 (D)</translation>
    </message>
    <message>
        <source>Axis (°)</source>
        <translation>轴位 (°)</translation>
    </message>
    <message>
        <source>Right eye (OD)</source>
        <translation>右眼 (OD)</translation>
    </message>
    <message>
        <source>Left eye (OS)</source>
        <translation>左眼 (OS)</translation>
    </message>
    <message>
        <source>Pupil distance: %1 mm</source>
        <translation>瞳距：%1 mm</translation>
    </message>
    <message>
        <source>Vision screening result</source>
        <translation>视力筛查结果</translation>
    </message>
    <message>
        <source>Screened with: %1
Test date: %2</source>
        <translation>筛查设备：%1
筛查日期：%2</translation>
    </message>
    <message>
        <source>Male</source>
        <translation>男</translation>
    </message>
    <message>
        <source>Female</source>
        <translation>女</translation>
    </message>
    <message>
        <source>Sex: %1    Birthday: %2</source>
        <translation>性别：%1    出生日期：%2</translation>
    </message>
    <message>
        <source>Pass</source>
        <translation>通过</translation>
    </message>
    <message>
        <source>Refer</source>
        <translation>转诊</translation>
    </message>
    <message>
        <source>No result</source>
        <translation>无结果</translation>
    </message>
    <message>
        <source>Result: %1</source>
        <translation>结果：%1</translation>
    </message>
    <message>
        <source>The screening found no sign that your child&apos;s eyes need a closer look today. A screening is a quick check, not a diagnosis: it can miss a problem. If your child squints, tilts the head, holds things very close or complains about the eyes, see an eye-care professional.</source>
        <translation>本次筛查未发现孩子的眼睛需要进一步检查的迹象。筛查只是快速检查，不是诊断，可能漏掉问题。如果孩子经常眯眼、歪头看东西、把东西拿得很近或说眼睛不舒服，请带孩子看眼科专业人员。</translation>
    </message>
    <message>
        <source>The screening found values that should be checked. This is not a diagnosis: many children referred turn out to need nothing, and only a full eye examination can tell. Please make an appointment with an eye-care professional (optometrist or ophthalmologist) and bring this letter.</source>
        <translation>本次筛查发现有需要进一步检查的数值。这不是诊断：许多被转诊的孩子最终并不需要处理，只有全面的眼科检查才能确定。请预约眼科专业人员（验光师或眼科医生），并携带本通知。</translation>
    </message>
    <message>
        <source>The screening could not give a result. A screening is not a diagnosis; please have your child screened again or see an eye-care professional.</source>
        <translation>本次筛查未能得出结果。筛查不是诊断；请让孩子重新筛查，或带孩子看眼科专业人员。</translation>
    </message>
    <message>
        <source>No pupil photo was kept for this test.</source>
        <translation>本次筛查未保存瞳孔照片。</translation>
    </message>
    <message>
        <source>Pupil photo taken during the test:</source>
        <translation>筛查时拍摄的瞳孔照片：</translation>
    </message>
</context>
<context>
    <name>TimeDlg</name>
    <message>
        <source>1 Minute</source>
        <translation>1 分钟</translation>
    </message>
    <message>
        <source>5 Minutes</source>
        <translation>5 分钟</translation>
    </message>
    <message>
        <source>10 Minutes</source>
        <translation>10 分钟</translation>
    </message>
    <message>
        <source>30 Minutes</source>
        <translation>30 分钟</translation>
    </message>
    <message>
        <source>1 Hour</source>
        <translation>1 小时</translation>
    </message>
    <message>
        <source>Never</source>
        <translation>永不</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
</context>
<context>
    <name>UploadDlg</name>
    <message>
        <source>Data is processing, Please wait...</source>
        <translation>正在处理数据，请稍候...</translation>
    </message>
    <message>
        <source>File is downloading, Please wait...</source>
        <translation>正在下载文件，请稍候...</translation>
    </message>
    <message>
        <source>It is printing, Please wait...</source>
        <translation>正在打印，请稍候...</translation>
    </message>
    <message>
        <source>Version checking, Please wait...</source>
        <translation>正在检查版本，请稍候...</translation>
    </message>
    <message>
        <source>Sending Result, Please wait...</source>
        <translation>正在发送结果，请稍候...</translation>
    </message>
    <message>
        <source>Mail is Sending, Please wait...</source>
        <translation>正在发送邮件，请稍候...</translation>
    </message>
</context>
<context>
    <name>WifiPwdDlg</name>
    <message>
        <source>Enter Password</source>
        <translation>请输入密码</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Connect</source>
        <translation>连接</translation>
    </message>
</context>
<context>
    <name>ZoneDlg</name>
    <message>
        <source>Time Zone</source>
        <translation>时区</translation>
    </message>
    <message>
        <source>UTC+00: Universal Coordinated Time</source>
        <translation>UTC+00: 协调世界时</translation>
    </message>
    <message>
        <source>UTC+01: European Central Time</source>
        <translation>UTC+01: 中欧时间</translation>
    </message>
    <message>
        <source>UTC+02: Eastern European Time</source>
        <translation>UTC+02: 东欧时间</translation>
    </message>
    <message>
        <source>UTC+03: Eastern African Time</source>
        <translation>UTC+03: 东非时间</translation>
    </message>
    <message>
        <source>UTC+04: Near East Time</source>
        <translation>UTC+04: 近东时间</translation>
    </message>
    <message>
        <source>UTC+05: Pakistan Lahore Time</source>
        <translation>UTC+05: 巴基斯坦拉合尔时间</translation>
    </message>
    <message>
        <source>UTC+5.5: Indian Standard Time</source>
        <translation>UTC+5.5: 印度标准时间</translation>
    </message>
    <message>
        <source>UTC+06: Bangladesh Standard Time</source>
        <translation>UTC+06: 孟加拉国标准时间</translation>
    </message>
    <message>
        <source>UTC+07: Vietnam Standard Time</source>
        <translation>UTC+07: 越南标准时间</translation>
    </message>
    <message>
        <source>UTC+08: China Standard Time</source>
        <translation>UTC+08: 中国标准时间</translation>
    </message>
    <message>
        <source>UTC+09: Japan Standard Time</source>
        <translation>UTC+09: 日本标准时间</translation>
    </message>
    <message>
        <source>UTC+10: Australia Eastern Time</source>
        <translation>UTC+10: 澳大利亚东部时间</translation>
    </message>
    <message>
        <source>UTC+11: Solomon Standard Time</source>
        <translation>UTC+11: 所罗门群岛标准时间</translation>
    </message>
    <message>
        <source>UTC+12: New Zealand Standard Time</source>
        <translation>UTC+12: 新西兰标准时间</translation>
    </message>
    <message>
        <source>UTC-01: Central African Time</source>
        <translation>UTC-01: 中非时间</translation>
    </message>
    <message>
        <source>UTC-02: Noronha Standard Time</source>
        <translation>UTC-02: 诺罗尼亚标准时间</translation>
    </message>
    <message>
        <source>UTC-03: Brazil Eastern Time</source>
        <translation>UTC-03: 巴西东部时间</translation>
    </message>
    <message>
        <source>UTC-04: Virgin Islands Time</source>
        <translation>UTC-04: 维尔京群岛时间</translation>
    </message>
    <message>
        <source>UTC-05: Eastern Standard Time</source>
        <translation>UTC-05: 北美东部标准时间</translation>
    </message>
    <message>
        <source>UTC-06: Central Standard Time</source>
        <translation>UTC-06: 北美中部标准时间</translation>
    </message>
    <message>
        <source>UTC-07: Mountain Standard Time</source>
        <translation>UTC-07: 北美山地标准时间</translation>
    </message>
    <message>
        <source>UTC-08: Pacific Standard Time</source>
        <translation>UTC-08: 北美太平洋标准时间</translation>
    </message>
    <message>
        <source>UTC-09: Alaska Standard Time</source>
        <translation>UTC-09: 阿拉斯加标准时间</translation>
    </message>
    <message>
        <source>UTC-10: Hawaii Standard Time</source>
        <translation>UTC-10: 夏威夷标准时间</translation>
    </message>
    <message>
        <source>UTC-11: Midway Islands Time</source>
        <translation>UTC-11: 中途岛时间</translation>
    </message>
</context>
<context>
    <name>versiondlg</name>
    <message>
        <source>Version Switch</source>
        <translation>版本切换</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>确定</translation>
    </message>
    <message>
        <source>Switch to %1</source>
        <translation>切换到 %1</translation>
    </message>
    <message>
        <source>Yes</source>
        <translation>是</translation>
    </message>
    <message>
        <source>No</source>
        <translation>否</translation>
    </message>
    <message>
        <source>Version Check Failed!</source>
        <translation>版本检查失败</translation>
    </message>
    <message>
        <source>System Switch Failed!</source>
        <translation>版本切换失败</translation>
    </message>
    <message>
        <source>System Switch Success!</source>
        <translation>版本切换成功</translation>
    </message>
</context>
</TS>
