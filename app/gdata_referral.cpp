// SPDX-License-Identifier: GPL-2.0-or-later
// GData: the referral criteria that turn a refraction and an age into Pass or Refer.
#include "gdata.h"

#include "referral.h"

namespace {

referral::Refraction currentEyes(const GData &data)
{
    return referral::fromText(data.m_strOSSphere, data.m_strODSphere, data.m_strOSCylinder, data.m_strODCylinder);
}

} // namespace

int GData::getMonthofAge() const
{
    // The device clock runs in UTC; the age must turn on the local date, as
    // the rounding hangs on single days.
    return referral::monthsOfAge(m_dateBirthday, getLocalTime().date());
}

int GData::calculateMatta() const
{
    return referral::matta(getMonthofAge(), currentEyes(*this));
}

int GData::calculateArnold() const
{
    return referral::arnold(getMonthofAge(), currentEyes(*this));
}

int GData::calculateArthur2() const
{
    return referral::arthur2(currentEyes(*this));
}

int GData::calculateReferral() const
{
    switch (m_nReferralCriterion) {
    case referral::Matta: return calculateMatta();
    case referral::Arnold: return calculateArnold();
    default: return calculateArthur2();
    }
}
